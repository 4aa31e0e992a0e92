#include "Translation.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

namespace {

constexpr const char* context = "vorla-host";

/// Texts out of a table of English to translated ones. The toolkit's own few words in our dialogs
/// are in it too, whatever the context.
class TableTranslator : public QTranslator {
 public:
    TableTranslator(const QJsonObject& table, QObject* parent)
        : QTranslator(parent), table_(table) {}

    [[nodiscard]] bool isEmpty() const override { return table_.isEmpty(); }

    QString translate(const char* /*context*/, const char* source, const char* /*disambiguation*/,
                      int /*n*/) const override {
        return table_.value(QString::fromUtf8(source)).toString();
    }

 private:
    QJsonObject table_;
};

QLocale userLocale() {
    const QStringList languages = QLocale::system().uiLanguages();
    return languages.isEmpty() ? QLocale() : QLocale(languages.first());
}

}  // namespace

QString text(const char* english) {
    return QCoreApplication::translate(context, english);
}

void installTranslation() {
    const QLocale locale = userLocale();
    if (locale.language() != QLocale::Chinese || locale.script() != QLocale::SimplifiedHanScript)
        return;
    auto* toolkit = new QTranslator(qApp);
    if (toolkit->load(QLocale(QLocale::Chinese, QLocale::China), "qtbase", "_",
                      QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(toolkit);
    QFile file(":/vorla-host/zh-Hans.json");
    if (!file.open(QIODevice::ReadOnly)) return;
    const QJsonObject table = QJsonDocument::fromJson(file.readAll()).object();
    QCoreApplication::installTranslator(new TableTranslator(table, qApp));
}
