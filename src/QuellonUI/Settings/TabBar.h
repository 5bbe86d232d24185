#pragma once

#include "QuellonCore/Presentation/SettingsModel.h"
#include "QuellonUI/Settings/Form/ButtonAction.h"
#include "QuellonUI/Settings/Form/FormView.h"

#include <vector>

class QHBoxLayout;

namespace quellon {

/// A tab: its symbol above its title.
class TabButton final : public Pressable {
    Q_OBJECT
public:
    explicit TabButton(QWidget* parent = nullptr);

    void setModel(const SettingsModel::Tab& tab);
    [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
    void acted(const SettingsAction& action);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void nextCheckState() override {}

private:
    ButtonAction* action_;
    std::string symbol_;
};

/// The tabs of the settings window. The left and right keys go from one to the next.
class TabBar final : public FormView {
    Q_OBJECT
public:
    explicit TabBar(QWidget* parent = nullptr);

    void setModel(const std::vector<SettingsModel::Tab>& tabs);
    /// Gives the focus to the tab of the page that is open.
    void takeFocus();
    /// Does so when another tab has the focus: the mouse, or somebody else, has opened the page.
    void followPage();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    QHBoxLayout* line_;
    std::vector<TabButton*> buttons_;

    [[nodiscard]] TabButton* open() const;
    void step(int by);
};

} // namespace quellon
