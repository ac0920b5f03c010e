#include "app/Translations.h"
#include "tests/e2e/app/Accessibles.h"
#include "tests/e2e/app/AppWorld.h"

#include <QProcess>
#include <QRegularExpression>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

Q_DECLARE_METATYPE(std::function<QString()>)

namespace {

const QString mark = u"⟦"_s;

/// A catalogue that puts every text between marks, made of one that lupdate has made.
QByteArray marked(QIODevice &catalogue)
{
    QByteArray result;
    QXmlStreamReader reader(&catalogue);
    QXmlStreamWriter writer(&result);
    QString source;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement() && reader.name() == u"source") {
            source = reader.readElementText();
            writer.writeTextElement(u"source"_s, source);
        } else if (reader.isStartElement() && reader.name() == u"translation") {
            writer.writeStartElement(u"translation"_s);
            bool isNumerous = false;
            while (reader.readNextStartElement()) {
                isNumerous = true;
                reader.skipCurrentElement();
                writer.writeTextElement(u"numerusform"_s, mark + source + u'⟧');
            }
            if (!isNumerous)
                writer.writeCharacters(mark + source + u'⟧');
            writer.writeEndElement();
        } else if (!reader.isDTD()) {
            writer.writeCurrentToken(reader);
        }
    }
    return reader.hasError() ? QByteArray() : result;
}

} // namespace

/// The application in a language whose every text is between marks, so that what has none was never
/// translated. All tests share one program: the browser serves only one.
class AppTranslationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase() { m_world.reset(); }

    void modelsSpeakIt_data();
    void modelsSpeakIt();
    void viewsSpeakIt_data();
    void viewsSpeakIt();
    void namesInFilesAndSettingsStay();

private:
    QTemporaryDir m_catalogues;
    std::unique_ptr<AppWorld> m_world;
};

void AppTranslationTest::initTestCase()
{
    const QString sources = m_catalogues.filePath(u"lumaro_eo.ts"_s);
    QStringList update = QString(QStringLiteral(LUMARO_LUPDATE)).split(u'|');
    update << u"-target-language"_s << u"eo"_s << u"-ts"_s << sources;
    QVERIFY(QProcess::execute(update.takeFirst(), update) == 0);
    QFile file(sources);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray catalogue = marked(file);
    QVERIFY(catalogue.count("<message") > 300);
    file.close();
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(catalogue);
    file.close();
    QCOMPARE(QProcess::execute(QStringLiteral(LUMARO_LRELEASE), {u"-silent"_s, sources}), 0);

    installTranslations(QLocale(QLocale::Esperanto), {m_catalogues.path()});
    QAccessible::setActive(true);
    m_world = std::make_unique<AppWorld>();
}

void AppTranslationTest::modelsSpeakIt_data()
{
    QTest::addColumn<std::function<QString()>>("text");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, std::function<QString()> text, const QString &expected) {
        QTest::newRow(name) << std::move(text) << expected;
    };
    row(
        "tr() of a model in app/", [this] { return m_world->recording().buttonText(); },
        u"⟦Record⟧"_s);
    row(
        "translate() in a library",
        [] { return HttpError{HttpError::Kind::TimedOut}.description(); },
        u"⟦The server did not answer in time.⟧"_s);
    row(
        "one text in another",
        [this] {
            m_world->open(m_world->folder() + u"/missing.m3u");
            return becomesTrue([this] { return !m_world->player().errorMessage().isEmpty(); })
                ? m_world->player().errorMessage()
                : QString();
        },
        u"⟦Could not import playlist: ⟦The file does not exist.⟧⟧"_s);
    row(
        "a number and its noun",
        [this] {
            m_world->library().save(QUrl(u"http://127.0.0.1:9/1.m3u8"_s), u"One"_s);
            m_world->library().save(QUrl(u"http://127.0.0.1:9/2.m3u8"_s), u"Two"_s);
            const QString list = m_world->folder() + u"/list.m3u";
            QFile file(list);
            if (!file.open(QIODevice::WriteOnly) || file.write("http://127.0.0.1:9/3.m3u8\n") < 1)
                return QString();
            file.close();
            m_world->librarySection().drop({QUrl::fromLocalFile(list)}, {});
            return becomesTrue([this] { return !m_world->player().toastMessage().isEmpty(); })
                ? m_world->player().toastMessage()
                : QString();
        },
        u"⟦Imported ⟦1 link⟧ in place of ⟦2 links⟧. Undo brings them back.⟧"_s);
    row(
        "a member that is made once", [this] { return m_world->finder().streams()->header; },
        u"⟦Detected M3U8 Streams⟧"_s);
}

void AppTranslationTest::modelsSpeakIt()
{
    QFETCH(const std::function<QString()>, text);
    QTEST(text(), "expected");
}

void AppTranslationTest::viewsSpeakIt_data()
{
    QTest::addColumn<bool>("ofFinder");
    QTest::newRow("main window") << false;
    QTest::newRow("stream finder") << true;
}

void AppTranslationTest::viewsSpeakIt()
{
    QFETCH(const bool, ofFinder);
    QQuickWindow *const window = ofFinder ? m_world->openFinder() : &m_world->window();
    QVERIFY(window);
    const QList<Accessible> things = accessibles(*window);
    QStringList faults;
    int spoken = 0;
    for (const Accessible &thing : things) {
        for (const QString &text : {thing.name, thing.description}) {
            // The ad blocker speaks Turkish; the rest are names, keys and numbers.
            static const QRegularExpression others(
                u"^(|Lumaro|M3U8 Stream Finder|3.m3u8|[\\d:.,\\- ]+|Ad Blocker: .*)$"
                "|^((Ctrl|Alt|Shift)\\+.+|Space|Left|Right|Up, Down|F|F11|Esc)$"_s);
            if (text.contains(mark))
                ++spoken;
            else if (!others.match(text).hasMatch())
                faults.append(text + u" of " + thing.text());
        }
    }
    QVERIFY2(faults.isEmpty(), qPrintable(u"\n  " + faults.join(u"\n  ")));
    QVERIFY(spoken > 8);
}

void AppTranslationTest::namesInFilesAndSettingsStay()
{
    QCOMPARE(rawValue(PortraitDisplayMode::fill), u"Portrait Fill"_s);
    QCOMPARE(displayTitle(PortraitDisplayMode::fill), u"⟦Portrait Fill⟧"_s);
    QCOMPARE(m_world->finderController().title, u"M3U8 Stream Finder"_s);
}

LUMARO_APP_TEST_MAIN(AppTranslationTest)
#include "tst_app_translation.moc"
