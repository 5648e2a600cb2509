// SPDX-License-Identifier: GPL-3.0-or-later
// Tests run with an event loop's application, in a time zone that is not UTC and a locale with accents.
#include <QCoreApplication>

#include <gtest/gtest.h>

int main(int argc, char *argv[])
{
    qputenv("TZ", "Europe/Berlin");
    qputenv("LC_ALL", "en_US.UTF-8");
    QCoreApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
