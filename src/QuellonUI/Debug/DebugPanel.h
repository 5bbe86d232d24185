#pragma once

#include "QuellonCore/Presentation/DebugPanelModel.h"

#include <QWidget>

#include <optional>
#include <vector>

class QListWidget;
class QPlainTextEdit;
class QTimer;

namespace quellon {

class FlowLayout;
class Paragraph;
class PushButton;

/// The window for support: pages of text to read and to copy. Draws its model and reports what the user does.
class DebugPanel final : public QWidget {
    Q_OBJECT
public:
    DebugPanel();

    /// Shows this; returns at once when it is what is shown.
    void setModel(const DebugPanelModel& model);

Q_SIGNALS:
    void acted(const DebugAction& action);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    std::optional<DebugPanelModel> model_;
    Paragraph* note_;
    QListWidget* pages_;
    QPlainTextEdit* text_;
    PushButton* refresh_;
    PushButton* copy_;
    FlowLayout* commandRow_;
    std::vector<PushButton*> commands_;
    QTimer* copied_; ///< Until the button reads as usual again.

    void arrange();
    void showPages(const DebugPanelModel& model);
    void showText(const DebugPanelModel& model);
    void showCommands(const DebugPanelModel& model);
    void copy();
};

} // namespace quellon
