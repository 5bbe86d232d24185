#include "QuellonUI/Debug/DebugPanel.h"

#include "QuellonUI/Kit/FlowLayout.h"
#include "QuellonUI/Kit/Paragraph.h"
#include "QuellonUI/Kit/PushButton.h"
#include "QuellonUI/Theme.h"

#include <QClipboard>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTimer>
#include <QVBoxLayout>

#include <chrono>

namespace quellon {

namespace {

constexpr int gap = 10;
constexpr int margin = 16;
constexpr int rowSpacing = 3;
constexpr double textMargin = 8.0;

/// The user's font for texts in columns, as large as the small texts of other windows.
QFont columnFont()
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSizeF(Fonts::callout().pointSizeF());
    return font;
}

} // namespace

DebugPanel::DebugPanel()
    : note_(new Paragraph{Fonts::callout(), this}),
      pages_(new QListWidget{this}),
      text_(new QPlainTextEdit{this}),
      refresh_(new PushButton{Fonts::body(), this}),
      copy_(new PushButton{Fonts::body(), this}),
      commandRow_(new FlowLayout{gap, gap}),
      copied_(new QTimer{this})
{
    setWindowTitle(toQString(DebugPanelModel::windowTitle));
    setAttribute(Qt::WA_QuitOnClose, false);
    note_->setTint(Tint::secondary);
    pages_->setAccessibleName(toQString(DebugPanelModel::pagesLabel));
    pages_->setTabKeyNavigation(false);
    pages_->setSpacing(rowSpacing);
    text_->setReadOnly(true);
    text_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    text_->setTabChangesFocus(true);
    text_->setLineWrapMode(QPlainTextEdit::NoWrap);
    text_->setFont(columnFont());
    text_->document()->setDocumentMargin(textMargin);
    copy_->setKind(PushButton::Kind::primary);
    arrange();
    connect(pages_, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row >= 0) Q_EMIT acted(DebugActions::SelectPage{static_cast<std::size_t>(row)});
    });
    connect(refresh_, &Pressable::chosen, this, [this] { Q_EMIT acted(DebugActions::Refresh{}); });
    connect(copy_, &Pressable::chosen, this, &DebugPanel::copy);
    copied_->setSingleShot(true);
    copied_->setInterval(std::chrono::duration_cast<std::chrono::milliseconds>(AboutModel::copiedTime));
    connect(copied_, &QTimer::timeout, this, [this] { Q_EMIT acted(DebugActions::ShowCopied{false}); });
}

void DebugPanel::arrange()
{
    constexpr int width = 820;
    constexpr int height = 560;
    constexpr int listWidth = 190;
    pages_->setFixedWidth(listWidth);
    auto* const column = new QVBoxLayout{this};
    column->setContentsMargins(margin, margin, margin, margin);
    column->setSpacing(gap);
    auto* const head = new QHBoxLayout;
    head->setSpacing(gap);
    head->addWidget(note_, 1);
    head->addWidget(refresh_);
    head->addWidget(copy_);
    column->addLayout(head);
    auto* const middle = new QHBoxLayout;
    middle->setSpacing(gap);
    middle->addWidget(pages_);
    middle->addWidget(text_, 1);
    column->addLayout(middle, 1);
    column->addLayout(commandRow_);
    resize(width, height);
    setTabOrder(refresh_, copy_);
    setTabOrder(copy_, pages_);
    setTabOrder(pages_, text_);
}

void DebugPanel::setModel(const DebugPanelModel& model)
{
    if (model == model_) return;
    model_ = model;
    note_->setText(toQString(model.note));
    refresh_->setTitle(toQString(model.refresh.title), toQString(model.refresh.accessibilityLabel));
    copy_->setTitle(toQString(model.copy.title), toQString(model.copy.accessibilityLabel));
    showPages(model);
    showText(model);
    showCommands(model);
}

void DebugPanel::showPages(const DebugPanelModel& model)
{
    const QSignalBlocker blocker{pages_};
    const int count = static_cast<int>(model.pages.size());
    while (pages_->count() > count) delete pages_->takeItem(pages_->count() - 1);
    for (int row = 0; row < count; ++row) {
        const QString title = toQString(model.pages[static_cast<std::size_t>(row)].title);
        if (row == pages_->count()) pages_->addItem(title);
        if (pages_->item(row)->text() != title) pages_->item(row)->setText(title);
    }
    pages_->setCurrentRow(static_cast<int>(model.page));
}

void DebugPanel::showText(const DebugPanelModel& model)
{
    const QString text = toQString(model.text);
    text_->setAccessibleName(toQString(model.pages[model.page].title));
    if (text_->toPlainText() != text) text_->setPlainText(text);
}

void DebugPanel::showCommands(const DebugPanelModel& model)
{
    while (commands_.size() < model.commands.size()) {
        auto* const button = new PushButton{Fonts::callout(), this};
        setTabOrder(commands_.empty() ? static_cast<QWidget*>(text_) : commands_.back(), button);
        commandRow_->addWidget(button);
        connect(button, &Pressable::chosen, this, [this, index = commands_.size()] {
            if (model_ && index < model_->commands.size()) Q_EMIT acted(model_->commands[index].action);
        });
        commands_.push_back(button);
    }
    for (std::size_t i = 0; i < commands_.size(); ++i) {
        const bool shown = i < model.commands.size();
        commands_[i]->setVisible(shown);
        if (!shown) continue;
        commands_[i]->setTitle(toQString(model.commands[i].title), toQString(model.commands[i].accessibilityLabel));
    }
}

void DebugPanel::copy()
{
    if (!model_) return;
    QGuiApplication::clipboard()->setText(toQString(model_->text));
    copied_->start();
    const DebugAction action = model_->copy.action;
    Q_EMIT acted(action);
}

void DebugPanel::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::Cancel) || event->matches(QKeySequence::Close)) {
        close();
        return;
    }
    QWidget::keyPressEvent(event);
}

} // namespace quellon
