#pragma once

#include "QuellonCore/Presentation/MenuPanelModel.h"

#include <QWidget>

#include <optional>
#include <vector>

namespace quellon {

class Bar;
class ProfileMenu;
class TextLabel;
class TextRuns;

/// The plan: which one, how much of it is used, and what is left of it for today.
class BudgetView final : public QWidget {
    Q_OBJECT
public:
    explicit BudgetView(QWidget* parent = nullptr);

    /// Returns at once when this is what is shown. Without a budget the view keeps the last.
    void setModel(const std::optional<MenuPanelModel::ProfileSwitcher>& profiles,
                  const std::optional<BudgetPresentation::Row>& budget);
    /// What Tab goes through, in order.
    [[nodiscard]] std::vector<QWidget*> stops() const;

Q_SIGNALS:
    void acted(const PanelAction& action);

private:
    std::optional<BudgetPresentation::Row> model_;
    ProfileMenu* profiles_;
    TextLabel* title_;
    TextLabel* amounts_;
    Bar* bar_;
    TextRuns* rest_;
    TextRuns* today_;
    TextRuns* gaps_;

    void showTexts();
};

} // namespace quellon
