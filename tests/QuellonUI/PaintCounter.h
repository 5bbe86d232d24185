#pragma once

#include <QApplication>
#include <QEvent>
#include <QWidget>

namespace quellon {

/// Counts what is painted in widgets and all that stands in them.
class PaintCounter final : public QObject {
public:
    PaintCounter() = default;
    explicit PaintCounter(QWidget& root) { watch(root); }

    int count = 0;

    void watch(QWidget& root)
    {
        root.installEventFilter(this);
        for (QWidget* const each : root.findChildren<QWidget*>()) each->installEventFilter(this);
    }
    /// Waits until all that is under way is painted, and counts from there.
    void restart()
    {
        constexpr int turns = 3;
        do {
            count = 0;
            for (int i = 0; i < turns; ++i) {
                QApplication::sendPostedEvents();
                QApplication::processEvents();
            }
        } while (count > 0);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) ++count;
        return QObject::eventFilter(watched, event);
    }
};

} // namespace quellon
