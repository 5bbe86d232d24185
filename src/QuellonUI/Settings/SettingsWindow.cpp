#include "QuellonUI/Settings/SettingsWindow.h"

#include "QuellonUI/Kit/Divider.h"
#include "QuellonUI/Settings/AboutPage.h"
#include "QuellonUI/Settings/Accessibility.h"
#include "QuellonUI/Settings/AppDetailView.h"
#include "QuellonUI/Settings/AppPicker.h"
#include "QuellonUI/Settings/AppsPage.h"
#include "QuellonUI/Settings/Form/FieldEdit.h"
#include "QuellonUI/Settings/Form/FocusOrder.h"
#include "QuellonUI/Settings/LogPage.h"
#include "QuellonUI/Settings/PlanPage.h"
#include "QuellonUI/Settings/QuestionCard.h"
#include "QuellonUI/Settings/RulesPage.h"
#include "QuellonUI/Settings/Sheet.h"
#include "QuellonUI/Settings/TabBar.h"
#include "QuellonUI/Theme.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QScreen>
#include <QShortcut>
#include <QStackedWidget>
#include <QUrl>
#include <QVBoxLayout>

#include <algorithm>
#include <concepts>

namespace quellon {

namespace {

/// Room for the widest row in the usual font, and for the same letters in a larger one.
constexpr int leastWidth = 560;
constexpr int widthInLetters = 74;
constexpr int usualHeight = 720;
/// What a title bar takes of the screen.
constexpr int titleHeight = 40;

} // namespace

SettingsWindow::SettingsWindow()
    : QWidget(nullptr, Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                           Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint),
      tabs_(new TabBar{this}),
      stack_(new QStackedWidget{this})
{
    installSettingsAccessibility();
    setWindowTitle(toQString(SettingsModel::windowTitle));
    setFont(Fonts::body());
    auto* const column = new QVBoxLayout{this};
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(tabs_);
    column->addWidget(new Divider{this});
    column->addWidget(stack_, 1);
    connect(tabs_, &TabBar::acted, this, &SettingsWindow::forward);
    connect(new QShortcut{QKeySequence{QKeySequence::Close}, this}, &QShortcut::activated, this, &QWidget::close);
    fitScreen();
}

SettingsWindow::~SettingsWindow()
{
    // A field that goes with the focus in it would report that it was left.
    ends_ = true;
    if (QWidget* const focus = focusWidget()) focus->clearFocus();
}

void SettingsWindow::fitScreen()
{
    const QSize room = screen()->availableGeometry().size();
    const int width = std::max(leastWidth, widthInLetters * fontMetrics().averageCharWidth());
    setFixedSize(std::min(width, room.width()), std::min(usualHeight, room.height() - titleHeight));
}

void SettingsWindow::setModel(const SettingsModel& model)
{
    if (model == model_ && !expectsModel_) return;
    const bool isOtherPage = model.page.index() != model_.page.index();
    expectsModel_ = false;
    model_ = model;
    tabs_->setModel(model_.tabs);
    std::visit([this](const auto& page) { showPage(page); }, model_.page);
    showSheets();
    // Not at any other change: who goes from tab to tab is not to be taken back at each new number on the page.
    if (isOtherPage) tabs_->followPage();
}

template <typename Page>
Page& SettingsWindow::open(Page*& page, bool scrolls)
{
    if (page == nullptr) {
        page = new Page;
        stack_->addWidget(scrolls ? new PageScroll{*page, stack_} : static_cast<QWidget*>(page));
        if constexpr (std::derived_from<Page, FormView>) {
            connect(page, &FormView::acted, this, &SettingsWindow::forward);
        }
        FocusOrder::follow(*this);
    }
    for (int i = 0; i < stack_->count(); ++i) {
        if (stack_->widget(i) == page || stack_->widget(i)->isAncestorOf(page)) stack_->setCurrentIndex(i);
    }
    return *page;
}

void SettingsWindow::showPage(const PlanTabModel& page)
{
    open(plan_, true).setModel(page);
}

void SettingsWindow::showPage(const RulesTabModel& page)
{
    open(rules_, true).setModel(page);
}

void SettingsWindow::showPage(const AppsTabModel& page)
{
    open(apps_, true).setModel(page);
}

void SettingsWindow::showPage(const LogTabModel& page)
{
    open(log_, false).setModel(page);
}

void SettingsWindow::showPage(const AboutModel& page)
{
    const bool isNew = about_ == nullptr;
    open(about_, true).setModel(page);
    if (isNew) {
        connect(about_, &AboutPage::openURL, this, &SettingsWindow::openURL);
        connect(about_, &AboutPage::versionTapped, this, &SettingsWindow::versionTapped);
    }
}

template <typename Content, typename Model>
void SettingsWindow::showSheet(Sheet*& sheet, Content*& content, const Model* model)
{
    if (model == nullptr) {
        if (sheet != nullptr) sheet->dismiss();
        return;
    }
    const bool isNew = sheet == nullptr;
    if (isNew) {
        content = new Content;
        sheet = new Sheet{*this, *content};
        connect(content, &FormView::acted, this, &SettingsWindow::forward);
        connect(sheet, &Sheet::escaped, this, &SettingsWindow::escape);
    }
    content->setModel(*model);
    if (isNew) FocusOrder::follow(*this);
    if (sheet->accessibleName() != content->windowTitle()) sheet->setAccessibleName(content->windowTitle());
    sheet->present(content->firstControl());
}

void SettingsWindow::showSheets()
{
    const auto* const plan = std::get_if<PlanTabModel>(&model_.page);
    const auto* const apps = std::get_if<AppsTabModel>(&model_.page);
    showSheet(questionSheet_, question_, plan != nullptr && plan->question ? &*plan->question : nullptr);
    showSheet(pickerSheet_, picker_, apps != nullptr && apps->picker ? &*apps->picker : nullptr);
    // Last, and so on top: the picker can open it.
    showSheet(detailSheet_, detail_, model_.detail ? &*model_.detail : nullptr);
}

std::vector<SettingsAction> SettingsWindow::ends() const
{
    std::vector<SettingsAction> result;
    if (model_.detail) result.push_back(model_.detail->close.action);
    const auto* const apps = std::get_if<AppsTabModel>(&model_.page);
    if (apps != nullptr && apps->picker) result.push_back(apps->picker->cancel.action);
    const auto* const plan = std::get_if<PlanTabModel>(&model_.page);
    if (plan != nullptr && plan->question) result.push_back(plan->question->keep.action);
    return result;
}

void SettingsWindow::escape()
{
    const auto all = ends();
    if (!all.empty()) forward(all.front());
}

void SettingsWindow::forward(const SettingsAction& action)
{
    using namespace SettingsActions;
    if (ends_) return;
    const SettingsAction kept = action;
    const bool isTyping = std::holds_alternative<EditNumber>(kept) || std::holds_alternative<CommitNumber>(kept) ||
                          std::holds_alternative<RenameProfile>(kept) || std::holds_alternative<FilterPicker>(kept);
    if (!isTyping) finishTyping();
    expectsModel_ = true;
    Q_EMIT acted(kept);
}

/// A press leaves the focus where it is: what is being typed there counts all the same.
void SettingsWindow::finishTyping()
{
    if (auto* const field = qobject_cast<FieldEdit*>(focusWidget())) field->finish();
}

bool SettingsWindow::event(QEvent* event)
{
    // The fonts, and with them the width, are the user's.
    if (event->type() == QEvent::ApplicationFontChange) fitScreen();
    return QWidget::event(event);
}

void SettingsWindow::keyPressEvent(QKeyEvent* event)
{
    // What had the focus in a sheet may be gone.
    if (event->key() == Qt::Key_Escape && !ends().empty())
        escape();
    else
        QWidget::keyPressEvent(event);
}

void SettingsWindow::closeEvent(QCloseEvent* event)
{
    finishTyping();
    // A sheet ends with its window.
    for (const SettingsAction& each : ends()) forward(each);
    QWidget::closeEvent(event);
    if (event->isAccepted()) Q_EMIT closed();
}

void SettingsWindow::moveEvent(QMoveEvent* event)
{
    QWidget::moveEvent(event);
    if (isVisible()) Q_EMIT moved();
}

void SettingsWindow::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (event->spontaneous()) return;
    fitScreen();
    if (focusWidget() == nullptr) tabs_->takeFocus();
}

} // namespace quellon
