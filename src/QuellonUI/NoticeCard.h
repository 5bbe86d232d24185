#pragma once

#include "QuellonCore/Presentation/ControlsModel.h"
#include "QuellonUI/Kit/Card.h"
#include "QuellonUI/FlatButton.h"
#include "QuellonUI/Kit/StatusDot.h"
#include "QuellonUI/Kit/TextLabel.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

class QGridLayout;

namespace quellon {

/// Draws a notification and reports which of its buttons is pressed. Not visible without one.
class NoticeCard final : public QWidget {
    Q_OBJECT
public:
    explicit NoticeCard(QWidget* parent = nullptr);

    /// `place` stands beside the title: "1 of 3". Returns at once when all that is what is shown.
    void setNotice(const std::optional<ControlsModel::Notice>& notice, const std::string& place);
    /// While it is held nothing can be pressed, and the buttons are faint.
    void setHeld(bool held);
    void setTheme(const Theme& theme);

Q_SIGNALS:
    /// The button, 0 for the first, of the notification that was shown throughout the press.
    void answered(std::size_t button);
    void dismissed();

private:
    std::optional<ControlsModel::Notice> notice_;
    bool held_ = false;
    Theme theme_;
    Card* card_;
    StatusDot* dot_;
    QLabel* title_;
    TextLabel* place_;
    FlatButton* dismiss_;
    QLabel* text_;
    QGridLayout* buttonLayout_;
    std::vector<FlatButton*> buttons_; ///< As many as were ever needed.

    void arrange();
    void lapse();
    void showButtons();
    void colour();
};

} // namespace quellon
