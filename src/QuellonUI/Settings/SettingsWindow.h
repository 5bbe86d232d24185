#pragma once

#include "QuellonCore/Presentation/SettingsModel.h"

#include <QWidget>

class QStackedWidget;
class QUrl;

namespace quellon {

class AboutPage;
class AppDetailView;
class AppPicker;
class AppsPage;
class FormView;
class LogPage;
class PlanPage;
class QuestionCard;
class RulesPage;
class Sheet;
class TabBar;

/// The window with the settings: draws its model and reports what the user does. Knows no engine and no clock. Its
/// pages and sheets are made when they are first needed.
///
/// Whoever hears of an action carries it out and gives the window a new model, an equal one too.
class SettingsWindow final : public QWidget {
    Q_OBJECT
public:
    SettingsWindow();
    ~SettingsWindow() override;

    /// Shows this; returns at once when it is what is shown.
    void setModel(const SettingsModel& model);

Q_SIGNALS:
    void acted(const SettingsAction& action);
    /// A link of the page about the program was pressed.
    void openURL(const QUrl& url);
    /// The version on that page was pressed.
    void versionTapped();
    /// The window stands somewhere else now.
    void moved();
    void closed();

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    SettingsModel model_;
    bool ends_ = false;        ///< The window is being destroyed.
    bool expectsModel_ = true; ///< Something was done: what is drawn may differ from the model.

    TabBar* tabs_;
    QStackedWidget* stack_;
    PlanPage* plan_ = nullptr;
    RulesPage* rules_ = nullptr;
    AppsPage* apps_ = nullptr;
    LogPage* log_ = nullptr;
    AboutPage* about_ = nullptr;
    QuestionCard* question_ = nullptr;
    Sheet* questionSheet_ = nullptr;
    AppPicker* picker_ = nullptr;
    Sheet* pickerSheet_ = nullptr;
    AppDetailView* detail_ = nullptr;
    Sheet* detailSheet_ = nullptr;

    void showPage(const PlanTabModel& page);
    void showPage(const RulesTabModel& page);
    void showPage(const AppsTabModel& page);
    void showPage(const LogTabModel& page);
    void showPage(const AboutModel& page);
    template <typename Page>
    Page& open(Page*& page, bool scrolls);
    void showSheets();
    template <typename Content, typename Model>
    void showSheet(Sheet*& sheet, Content*& content, const Model* model);
    /// What closing each sheet that is up does.
    [[nodiscard]] std::vector<SettingsAction> ends() const;
    void escape();
    void forward(const SettingsAction& action);
    void finishTyping();
    void fitScreen();
};

} // namespace quellon
