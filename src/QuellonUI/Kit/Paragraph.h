#pragma once

#include "QuellonCore/Presentation/Tint.h"

#include <QFont>
#include <QLabel>

namespace quellon {

/// Plain text in as many lines as it needs, which never makes its window wider. It can be selected, also by the
/// keyboard once it was clicked, and copied; Tab passes it by.
class Paragraph final : public QLabel {
    Q_OBJECT
public:
    explicit Paragraph(const QFont& font, QWidget* parent = nullptr);

    /// Returns at once when this is what is shown.
    void setText(const QString& text);
    void setTint(Tint tint);
    [[nodiscard]] Tint tint() const { return tint_; }

protected:
    void changeEvent(QEvent* event) override;

private:
    Tint tint_ = Tint::primary;

    void colour();
};

} // namespace quellon
