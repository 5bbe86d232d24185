#pragma once

#include "QuellonCore/Presentation/FormControls.h"

#include <QComboBox>

namespace quellon {

/// One of several, as a box that opens a list. Keys open the list and choose in it only; the wheel scrolls what is
/// around the box and never changes it. Titles that are too long for it are elided in the middle.
class ChoiceBox final : public QComboBox {
    Q_OBJECT
public:
    explicit ChoiceBox(QWidget* parent = nullptr);

    void setModel(const FormChoice& model);
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

Q_SIGNALS:
    void acted(const SettingsAction& action);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    bool event(QEvent* event) override;

private:
    FormChoice model_;

    void take(const FormChoice& model);
    void fill();
    void choose(int index);
    [[nodiscard]] int blanks() const;
};

} // namespace quellon
