#pragma once

#include <QWidget>

namespace quellon {

/// The program's icon.
class ProgramIcon final : public QWidget {
    Q_OBJECT
public:
    explicit ProgramIcon(int points, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace quellon
