#include "QuellonHost/MacOS/UserNotificationCenter.h"

#include "QuellonCore/Presentation/PlainText.h"
#include "QuellonCore/Support/Text.h"

#import <Foundation/Foundation.h>
#import <UserNotifications/UserNotifications.h>

#include <string>
#include <utility>

namespace {

using quellon::NotificationCenter;
using Apps = std::vector<std::string>;
using Respond = std::function<void(std::string action, Apps apps)>;

NSString* text(std::string_view utf8)
{
    const std::string plain = quellon::plainText(utf8);
    return [[NSString alloc] initWithBytes:plain.data() length:plain.size() encoding:NSUTF8StringEncoding];
}

/// As they are, for they name applications; what is not UTF-8 can't be kept.
NSArray<NSString*>* list(const Apps& apps)
{
    NSMutableArray<NSString*>* const result = [NSMutableArray array];
    for (const std::string& app : apps) {
        NSString* const each = [[NSString alloc] initWithBytes:app.data()
                                                        length:app.size()
                                                      encoding:NSUTF8StringEncoding];
        if (each != nil) [result addObject:each];
    }
    return result;
}

/// The applications of a notification; none when another type stands there.
Apps appsOf(UNNotificationContent* content)
{
    Apps result;
    id const entry = content.userInfo[@(quellon::UserNotificationCenter::appsKey)];
    if (![entry isKindOfClass:[NSArray class]]) return result;
    for (id each in static_cast<NSArray*>(entry)) {
        if (![each isKindOfClass:[NSString class]]) return {};
        result.emplace_back(static_cast<NSString*>(each).UTF8String);
    }
    return result;
}

} // namespace

/// Its calls come on threads of the service.
@interface QuellonNotificationDelegate : NSObject <UNUserNotificationCenterDelegate>
@property(nonatomic) Respond respond;
@end

@implementation QuellonNotificationDelegate

- (void)userNotificationCenter:(UNUserNotificationCenter*)center
       willPresentNotification:(UNNotification*)notification
         withCompletionHandler:(void (^)(UNNotificationPresentationOptions))completionHandler
{
    completionHandler(UNNotificationPresentationOptionBanner | UNNotificationPresentationOptionSound);
}

- (void)userNotificationCenter:(UNUserNotificationCenter*)center
    didReceiveNotificationResponse:(UNNotificationResponse*)response
             withCompletionHandler:(void (^)(void))completionHandler
{
    const bool isClick = [response.actionIdentifier isEqualToString:UNNotificationDefaultActionIdentifier];
    const std::string action =
        isClick ? std::string{NotificationCenter::defaultAction} : std::string{response.actionIdentifier.UTF8String};
    self.respond(action, appsOf(response.notification.request.content));
    completionHandler();
}

@end

namespace quellon {

struct UserNotificationCenter::Delegate {
    QuellonNotificationDelegate* object = nil;
};

UserNotificationCenter::UserNotificationCenter(RunLoop& runLoop)
    : runLoop_{runLoop},
      self_{std::make_shared<UserNotificationCenter*>(this)},
      delegate_{std::make_unique<Delegate>()}
{
    delegate_->object = [[QuellonNotificationDelegate alloc] init];
    delegate_->object.respond = [&loop = runLoop_, weak = std::weak_ptr{self_}](std::string action, Apps apps) {
        loop.post([weak, action = std::move(action), apps = std::move(apps)] {
            const auto self = weak.lock();
            if (self && (*self)->onResponse) (*self)->onResponse(action, apps);
        });
    };
    UNUserNotificationCenter.currentNotificationCenter.delegate = delegate_->object;
}

UserNotificationCenter::~UserNotificationCenter()
{
    UNUserNotificationCenter.currentNotificationCenter.delegate = nil;
}

void UserNotificationCenter::requestAuthorization(std::function<void(const Authorization&)> answer)
{
    RunLoop& loop = runLoop_;
    const auto done = ^(BOOL granted, NSError* error) {
        Authorization authorization{.granted = granted == YES, .error = {}};
        if (error != nil) authorization.error = std::string{error.localizedDescription.UTF8String};
        loop.post([answer, authorization] { answer(authorization); });
    };
    [UNUserNotificationCenter.currentNotificationCenter
        requestAuthorizationWithOptions:UNAuthorizationOptionAlert | UNAuthorizationOptionSound
                      completionHandler:done];
}

void UserNotificationCenter::readSettings(std::function<void(const NotificationSettings&)> answer)
{
    RunLoop& loop = runLoop_;
    const auto done = ^(UNNotificationSettings* settings) {
        const NotificationSettings told{static_cast<NotificationAuthorization>(settings.authorizationStatus),
                                        static_cast<NotificationAlerts>(settings.alertSetting)};
        loop.post([answer, told] { answer(told); });
    };
    [UNUserNotificationCenter.currentNotificationCenter getNotificationSettingsWithCompletionHandler:done];
}

void UserNotificationCenter::setCategories(const std::vector<NotificationCategory>& categories)
{
    NSMutableSet<UNNotificationCategory*>* const all = [NSMutableSet set];
    for (const NotificationCategory& category : categories) {
        NSMutableArray<UNNotificationAction*>* const actions = [NSMutableArray array];
        for (const auto& button : category.buttons) {
            const auto options =
                button.destructive ? UNNotificationActionOptionDestructive : UNNotificationActionOptionNone;
            [actions addObject:[UNNotificationAction actionWithIdentifier:text(button.identifier)
                                                                    title:text(button.title)
                                                                  options:options]];
        }
        [all addObject:[UNNotificationCategory categoryWithIdentifier:text(category.identifier)
                                                              actions:actions
                                                    intentIdentifiers:@[]
                                                              options:UNNotificationCategoryOptionCustomDismissAction]];
    }
    [UNUserNotificationCenter.currentNotificationCenter setNotificationCategories:all];
}

void UserNotificationCenter::add(const NotificationRequest& request)
{
    UNMutableNotificationContent* const content = [[UNMutableNotificationContent alloc] init];
    content.title = text(request.title);
    content.subtitle = text(request.subtitle);
    NSMutableArray<NSString*>* const lines = [NSMutableArray array];
    for (std::string_view rest = request.body; !rest.empty();) [lines addObject:text(takeLine(rest))];
    content.body = [lines componentsJoinedByString:@"\n"];
    content.userInfo = @{@(appsKey) : list(request.apps)};
    if (!request.category.empty()) content.categoryIdentifier = text(request.category);
    if (request.style == NotificationStyle::persistent) {
        content.sound = UNNotificationSound.defaultSound;
        content.interruptionLevel = UNNotificationInterruptionLevelTimeSensitive;
    }
    UNNotificationRequest* const wrapped = [UNNotificationRequest requestWithIdentifier:NSUUID.UUID.UUIDString
                                                                                content:content
                                                                                trigger:nil];
    [UNUserNotificationCenter.currentNotificationCenter addNotificationRequest:wrapped withCompletionHandler:nil];
}

} // namespace quellon
