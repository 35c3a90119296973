// The tests of the window run on two screens that nobody sees, the second of twice the scale.
#include "ui/accessible_role.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>

int main(int argc, char** argv) {
    const QTemporaryDir folder;
    QFile screens(folder.filePath("screens.json"));
    if (!screens.open(QIODevice::WriteOnly)) return 1;
    screens.write(R"({"screens": [
        {"name": "plain", "x": 0, "y": 0, "width": 1920, "height": 1080, "dpr": 1},
        {"name": "dense", "x": 1920, "y": 0, "width": 1920, "height": 1080, "dpr": 2}]})");
    screens.close();
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + screens.fileName().toUtf8());
    const QApplication application(argc, argv);
    Q_INIT_RESOURCE(icons);
    Q_INIT_RESOURCE(translations);
    flowtide::installAccessibleRoles();
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
