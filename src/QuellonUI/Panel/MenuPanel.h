#pragma once

#include "QuellonCore/Presentation/MenuPanelModel.h"

#include <QElapsedTimer>
#include <QPoint>
#include <QRect>
#include <QWidget>

class QScrollArea;
class QScrollBar;

namespace quellon {

class MenuContent;

/// The window under the menu-bar item. It takes the keyboard when it opens, and goes when another window takes it or
/// Escape is pressed. What stands in it is made when it opens for the first time.
class MenuPanel final : public QWidget {
    Q_OBJECT
public:
    MenuPanel();
    ~MenuPanel() override;

    /// What is shown now, or from the next opening on. Returns at once when this is what is shown.
    void setModel(const MenuPanelModel& model);
    /// Opens for what was called at `anchor`, within the screen's free area; brings it forward when it is open. Where
    /// programs do not place their windows it is a small window with a title.
    void openAt(const QPoint& anchor, const QRect& freeArea);
    /// Closes it, and keeps its window for the next time.
    void dismiss();
    /// Whether it went a moment ago because something else was clicked: then a click on the menu-bar item was meant to
    /// close it.
    [[nodiscard]] bool closedJustNow() const;

Q_SIGNALS:
    void acted(const PanelAction& action);
    void opened();
    void closed();

protected:
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    MenuPanelModel model_;
    MenuContent* content_ = nullptr;
    QScrollArea* area_ = nullptr;
    QScrollBar* bar_ = nullptr; ///< Stands over the padding at the right.
    QPoint anchor_;
    QRect freeArea_;
    bool isPlaced_;
    bool isComposed_ = true;
    bool isOpen_ = false;
    QElapsedTimer sinceLeft_; ///< Since something else took the keyboard.

    void make();
    void makeScrollBar();
    void show(const MenuPanelModel& model);
    void fit();
    void shape();
    void leave();
};

} // namespace quellon
