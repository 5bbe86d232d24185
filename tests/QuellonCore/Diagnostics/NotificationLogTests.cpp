#include "QuellonCore/Diagnostics/NotificationLog.h"

#include "ScriptedHost.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

class NotificationLogTest : public ::testing::Test {
protected:
    NotificationLogTest() { host.environment("QUELLON_STATE_DIR", "/state"); }
    ScriptedHost host;
    const std::filesystem::path file = "/state/notifications.log";
};

TEST_F(NotificationLogTest, makesTheFolderAndTheFile)
{
    NotificationLog{host}.diag("authorization granted=true");
    EXPECT_EQ(host.files().get(file), "[2026-03-15 10:00:00 +0000] authorization granted=true\n");
    EXPECT_EQ(host.files().list().size(), 1U) << "no temporary file is left";
}

TEST_F(NotificationLogTest, addsToTheEnd)
{
    host.files().set(file, "from an earlier run\n");
    const NotificationLog log{host};
    log.diag("one\n");
    host.advance(Seconds{61.7});
    log.diag("云盘");
    EXPECT_EQ(host.files().get(file), "from an earlier run\n[2026-03-15 10:00:00 +0000] one\n\n"
                                      "[2026-03-15 10:01:01 +0000] 云盘\n");
}

TEST_F(NotificationLogTest, theTimeIsThatOfUTC)
{
    host.setZone("Asia/Shanghai");
    host.setClock(Date{Seconds{-0.5}});
    NotificationLog{host}.diag("x");
    EXPECT_EQ(host.files().get(file), "[2000-12-31 23:59:59 +0000] x\n");
}

TEST_F(NotificationLogTest, aFileThatCannotBeOpenedIsReplaced)
{
    host.files().set("/elsewhere", "keep");
    host.files().set("/state/other", "");
    host.files().link(file, "/elsewhere");
    NotificationLog{host}.diag("x");
    EXPECT_EQ(host.files().get("/elsewhere"), "keep");
    EXPECT_EQ(host.files().get(file), "[2026-03-15 10:00:00 +0000] x\n");
}

TEST_F(NotificationLogTest, failuresAreIgnored)
{
    const NotificationLog log{host};
    host.files().readOnly();
    log.diag("x");
    EXPECT_TRUE(host.files().list().empty());
    host.files().readOnly(false);
    host.files().set(file, "before\n");
    host.files().failWrites();
    log.diag("x");
    EXPECT_EQ(host.files().get(file), "before\n");
    host.files().failWrites(false);
    log.diag("x");
    EXPECT_EQ(host.files().get(file), "before\n[2026-03-15 10:00:00 +0000] x\n");
}

} // namespace
} // namespace quellon
