#pragma once

#include "QuellonCore/Presentation/MenuPanelModel.h"
#include "QuellonUI/Panel/RowPool.h"

#include <QWidget>

#include <string>
#include <vector>

namespace quellon {

class PanelLink;
class TextLabel;

/// One application that is held frozen.
class PausedRowView final : public QWidget {
    Q_OBJECT
public:
    explicit PausedRowView(QWidget* parent = nullptr);

    /// Returns at once when this is what is shown.
    void setModel(const MenuPanelModel::Paused& model);
    /// The id of the entry.
    [[nodiscard]] const std::string& key() const { return model_.resume.action.target; }
    [[nodiscard]] QWidget* stop() const;

Q_SIGNALS:
    void acted(const PanelAction& action);

private:
    MenuPanelModel::Paused model_;
    TextLabel* name_;
    PanelLink* resume_;
};

/// Who is held frozen, and how to let it go.
class PausedView final : public QWidget {
    Q_OBJECT
public:
    explicit PausedView(QWidget* parent = nullptr);

    /// Returns at once when this is what is shown.
    void setModel(const PanelButton& resumeAll, const std::vector<MenuPanelModel::Paused>& paused);
    /// What Tab goes through, in order.
    [[nodiscard]] std::vector<QWidget*> stops() const;

Q_SIGNALS:
    void acted(const PanelAction& action);

private:
    std::vector<MenuPanelModel::Paused> paused_;
    TextLabel* title_;
    PanelLink* resumeAll_;
    RowPool<PausedRowView> rows_;

    QBoxLayout* makeLayout();
    PausedRowView* makeRow();
};

} // namespace quellon
