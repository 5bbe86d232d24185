#pragma once

#include "QuellonCore/Presentation/MenuPanelModel.h"

#include <QWidget>

#include <map>
#include <vector>

class QVBoxLayout;

namespace quellon {

class BudgetView;
class FooterView;
class HeaderView;
class LivenessView;
class NoticeRowView;
class PausedView;
class UsageListView;

/// The whole state of the guard in one column of fixed width, and its everyday controls. Knows no engine and no clock.
class MenuContent final : public QWidget {
    Q_OBJECT
public:
    explicit MenuContent(QWidget* parent = nullptr);

    /// Returns at once when this is what is shown.
    void setModel(const MenuPanelModel& model);
    /// Gives all parts their places at once, also while nothing is to be seen.
    void layOut();
    /// How high the column is.
    [[nodiscard]] int contentHeight() const;
    /// What Tab goes through, in order.
    [[nodiscard]] std::vector<QWidget*> stops() const;

Q_SIGNALS:
    void acted(const PanelAction& action);
    /// The parts have been given their places; the height may have changed.
    void laidOut();

protected:
    bool event(QEvent* event) override;

private:
    using Section = MenuPanelModel::Section;

    MenuPanelModel model_;
    bool isEmpty_ = true; ///< No model was shown yet.
    HeaderView* header_;
    NoticeRowView* tetherHint_;
    NoticeRowView* updateConsent_;
    NoticeRowView* updateAvailable_;
    BudgetView* budget_;
    UsageListView* usage_;
    PausedView* paused_;
    LivenessView* liveness_;
    FooterView* footer_;
    std::map<Section, QWidget*> sections_; ///< With their dividers.
    std::vector<QWidget*> order_;          ///< What Tab goes through now.

    template <typename View>
    void add(QVBoxLayout& layout, Section section, View& view);
    void showSections();
    void orderStops();
};

} // namespace quellon
