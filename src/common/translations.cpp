#include <OrbGui/orbguitranslations.h>

#include <QCoreApplication>
#include <QDir>
#include <QTranslator>

namespace OrbGui {

namespace {

QStringList translationDirs()
{
    QStringList dirs;
    const QString fromEnvironment = qEnvironmentVariable("ORBGUI_TRANSLATIONS_DIR");
    if (!fromEnvironment.isEmpty())
        dirs << fromEnvironment;
    dirs << QStringLiteral(ORBGUI_BUILD_TRANSLATIONS_DIR)
         << QStringLiteral(ORBGUI_INSTALLED_TRANSLATIONS_DIR);
    return dirs;
}

} // namespace

bool installTranslations(const QLocale &locale)
{
    QCoreApplication *app = QCoreApplication::instance();
    if (!app)
        return false;
    // One translator per language, kept by the application.
    const QString name = QStringLiteral("orbcameraguiapi_translator_") + locale.name();
    if (app->findChild<QTranslator *>(name))
        return true;
    for (const QString &dir : translationDirs()) {
        auto *translator = new QTranslator(app);
        translator->setObjectName(name);
        if (translator->load(locale, QStringLiteral("orbcameraguiapi"), QStringLiteral("_"), dir)
            && QCoreApplication::installTranslator(translator))
            return true;
        delete translator;
    }
    return false;
}

} // namespace OrbGui
