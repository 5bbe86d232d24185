#pragma once

#include "QuellonUI/Kit/Pressable.h"

#include <QFont>

namespace quellon {

/// A button with a ground, coloured by what it stands for.
class PushButton final : public Pressable {
    Q_OBJECT
public:
    enum class Kind { plain, primary, destructive };

    explicit PushButton(const QFont& font, QWidget* parent = nullptr);

    void setKind(Kind kind);
    [[nodiscard]] Kind kind() const { return kind_; }
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Kind kind_ = Kind::plain;
};

} // namespace quellon
