#include "ui/flowtide_app.h"

#include "project/files/project_error.h"
#include "ui/accessible_role.h"
#include "ui/desktop_motion.h"
#include "ui/main_window.h"
#include "ui/style.h"
#include "ui/tips.h"
#include "ui/user_settings.h"

#include <QApplication>
#include <QIcon>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>
#include <array>

// The macro declares a function, which is no namespace's.
static void loadResources() {
    Q_INIT_RESOURCE(icons);
    Q_INIT_RESOURCE(translations);
}

namespace flowtide {

int runFlowtideApp(const WindowPlatform& platform, const std::optional<std::filesystem::path>& file,
                   const std::function<void(const std::string& sentence)>& complain) {
    loadResources();
    QApplication::setApplicationName(QStringLiteral("Flowtide"));
    QApplication::setApplicationDisplayName(QStringLiteral("Loftwell Video"));
    QApplication::setOrganizationName(QStringLiteral("Loftwell Video"));
    QApplication::setDesktopFileName(QStringLiteral("com.loftwell.Flowtide"));
    QApplication::setAttribute(Qt::AA_DontUseNativeMenuBar);
    int argumentCount = 1;
    std::array<char, 9> name{"Flowtide"};
    std::array<char*, 2> arguments{name.data(), nullptr};
    QApplication application(argumentCount, arguments.data());
    // Ours, and those of Qt's own dialogs. English needs none.
    QTranslator texts;
    if (texts.load(QLocale(), QStringLiteral("flowtide"), QStringLiteral("_"), QStringLiteral(":/translations")))
        QApplication::installTranslator(&texts);
    QTranslator dialogs;
    if (dialogs.load(QLocale(), QStringLiteral("qtbase"), QStringLiteral("_"),
                     QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(&dialogs);
    installAccessibleRoles();
    QApplication::setStyle(new Style);
    Tips tips;
    application.installEventFilter(&tips);
    QIcon icon(QStringLiteral(":/icons/app.svg"));
    for (const int small : {16, 32})
        icon.addFile(QStringLiteral(":/icons/app-small.svg"), QSize(small, small));
    QApplication::setWindowIcon(icon);
    QApplication::setQuitOnLastWindowClosed(false);

    const DesktopMotion followed;
    UserSettings settings;
    try {
        SessionHost host(platform, settings);
        MainWindow window(host);
        window.show();
        if (file)
            window.openFile(*file);
        else
            host.model().restoreLastProject();
        host.model().loadRecentProjects();
        return QApplication::exec();
    } catch (const ProjectError& error) {
        complain(error.what());
        return 1;
    }
}

} // namespace flowtide
