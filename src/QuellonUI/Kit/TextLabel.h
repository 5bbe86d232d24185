#pragma once

#include "QuellonCore/Presentation/Tint.h"

#include <QFont>
#include <QLabel>

namespace quellon {

/// Plain text in one line that is elided in the middle where there is no room; the whole of it is its accessible name,
/// and its tool tip when it is cut.
class TextLabel final : public QLabel {
    Q_OBJECT
public:
    explicit TextLabel(const QFont& font, QWidget* parent = nullptr);

    /// Returns at once when this is what is shown.
    void setText(const QString& text);
    void setTint(Tint tint);
    /// Whether it may be cut for want of room, which it may unless told otherwise.
    void setElastic(bool elastic);
    [[nodiscard]] Tint tint() const { return tint_; }
    /// What is drawn: the text, or what of it fits.
    [[nodiscard]] QString shownText() const;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

private:
    Tint tint_ = Tint::primary;
    bool elastic_ = true;
};

} // namespace quellon
