#pragma once

#include "QuellonCore/Presentation/Tint.h"

#include <QFont>
#include <QLabel>

#include <vector>

namespace quellon {

/// Plain text of a given width in at most so many lines. What does not fit ends in an ellipsis; then the whole is the
/// tool tip. Screen readers always get the whole.
class ClampedText final : public QLabel {
    Q_OBJECT
public:
    /// Where the last line is elided, `elide` tells.
    ClampedText(const QFont& font, int width, int mostLines, Qt::TextElideMode elide, QWidget* parent = nullptr);

    /// Shows this text; line ends stand. Returns at once when this is what is shown.
    void setText(const QString& text);
    void setTint(Tint tint);
    /// What is drawn, line by line.
    [[nodiscard]] const std::vector<QString>& shownLines() const { return lines_; }

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    int mostLines_;
    Qt::TextElideMode elide_;
    Tint tint_ = Tint::primary;
    std::vector<QString> lines_;

    void arrange();
};

} // namespace quellon
