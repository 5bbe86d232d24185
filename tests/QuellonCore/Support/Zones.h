#pragma once

#include "QuellonCore/Support/Calendar.h"

#include <gtest/gtest.h>

#include <string>

/// What tests of local days share.
namespace quellon {

/// Zones whose clocks do what a calendar can get wrong.
inline constexpr const char* trickyZones[] = {
    "UTC",
    "Europe/Berlin",       // the usual change, at 2 o'clock in the night
    "America/Santiago",    // summer time begins at midnight, which is skipped
    "America/Asuncion",    // the same, until 2024
    "Asia/Kathmandu",      // +5:45, since a change by a quarter of an hour in 1986
    "Pacific/Apia",        // left out 30 December 2011
    "Africa/Cairo",        // skips a midnight in April and shows 23 o'clock twice in October
    "Asia/Beirut",         // the same at other dates
    "America/Nuuk",        // skips the hour before midnight
    "Australia/Lord_Howe", // changes by half an hour
    "America/St_Johns",    // until 2011 set its clock back from 00:01 to the day before
    "Pacific/Kwajalein",   // left out 21 August 1993
};

/// The calendar of a zone that the system must know; a failure of the test when it does not.
inline Calendar zone(const std::string& name)
{
    Calendar calendar{name};
    // An unknown zone would be UTC, and no other zone above shows what UTC shows at this time of any year.
    constexpr Date someTime{Seconds{300'000'000.0}};
    if (name != "UTC" && calendar.clockTime(someTime) == Calendar{}.clockTime(someTime))
        ADD_FAILURE() << "the system does not know the zone " << name;
    return calendar;
}

/// A moment of UTC.
inline Date utc(int year, int month, int day, int hour = 0, int minute = 0, double second = 0.0)
{
    return Calendar{}
        .moment({year, month, day}, std::chrono::hours{hour} + std::chrono::minutes{minute} + Seconds{second})
        .value();
}

/// A local time that exists.
inline Date localTime(const Calendar& calendar, int year, int month, int day, int hour = 0, int minute = 0,
                      double second = 0.0)
{
    return calendar
        .moment({year, month, day}, std::chrono::hours{hour} + std::chrono::minutes{minute} + Seconds{second})
        .value();
}

} // namespace quellon
