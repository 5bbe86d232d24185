#pragma once

#include "QuellonCore/Presentation/OverviewModel.h"
#include "QuellonUI/Kit/Card.h"
#include "QuellonUI/NoticeCard.h"
#include "QuellonUI/PausedList.h"
#include "QuellonUI/RowDelegates.h"
#include "QuellonUI/Kit/StatusDot.h"
#include "QuellonUI/Kit/TextLabel.h"

#include <QListView>
#include <QWidget>

#include <cstddef>
#include <string>

class QVBoxLayout;

namespace quellon {

/// The program's window: draws an overview and the controls, and reports what the user does. Knows no engine and no
/// clock. Closing it (Ctrl+Q or Ctrl+W, too) is up to the toolkit, which ends the program with its last window.
class OverviewWindow final : public QWidget {
    Q_OBJECT
public:
    OverviewWindow();

    /// Shows this overview; returns at once when it is the one that is shown.
    void setModel(const OverviewModel& model);
    /// Shows the notifications, what is paused and which application is selected; returns at once when it is that which
    /// is shown. A question that comes to its turn asks for attention when another window has it,
    /// and so does one that says the same as the one before.
    void setControls(const ControlsModel& controls);

Q_SIGNALS:
    void commanded(ControlCommand command);
    /// A button of the question, 0 for the first.
    void answered(std::size_t button);
    /// A paused application is to be resumed, by the id of its entry.
    void resumed(const std::string& id);

protected:
    bool event(QEvent* event) override;

private:
    OverviewModel model_;
    ControlsModel controls_;
    UsageListModel usageValues_;
    ActivityListModel activityValues_;

    StatusDot* dot_;
    TextLabel* title_;
    TextLabel* detail_;
    Card* counterCard_;
    TextLabel* interface_;
    TextLabel* counters_;
    QLabel* warning_;
    QLabel* hint_;
    NoticeCard* question_;
    NoticeCard* note_;
    PausedList* paused_;
    TextLabel* usageHeading_;
    TextLabel* windowHeading_;
    QLabel* empty_;
    QListView* usage_;
    UsageDelegate* usageDelegate_;
    TextLabel* activityHeading_;
    QListView* activity_;
    ActivityDelegate* activityDelegate_;

    void arrange();
    void arrangeHead(QVBoxLayout& layout);
    void arrangeLists(QVBoxLayout& layout);
    void connectControls();
    void showTexts();
    void applyTheme();
};

} // namespace quellon
