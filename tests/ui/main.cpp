// The tests of the window run on a screen that nobody sees.
#include "ui/accessible_role.h"

#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    Q_INIT_RESOURCE(icons);
    Q_INIT_RESOURCE(translations);
    flowtide::installAccessibleRoles();
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
