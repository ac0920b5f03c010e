#include "playlist/LocalM3UEditor.h"
#include "tests/fakes/FakeFilePanels.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

LocalM3UForm goodForm()
{
    return {.name = u" News\n"_s,
            .address = u"\thttps://h/a.m3u8 "_s,
            .logoAddress = u" http://l/a.png"_s,
            .countryCode = u" tr "_s,
            .category = u" Sports "_s};
}

const QString noName = u"Enter a channel or video name."_s;
const QString badAddress = u"Enter a valid HTTP or HTTPS M3U8 URL."_s;
const QString badLogo = u"Enter a valid logo URL."_s;
const QString badCountry = u"Enter a country code of two characters."_s;

struct World
{
    FakeFilePanels panels;
    LocalM3UEditor editor{panels};
    QList<PlaylistEntry> saved;

    World()
    {
        QObject::connect(&editor, &LocalM3UEditor::saved, &editor,
                         [this](const PlaylistEntry &entry) { saved.append(entry); });
    }
    void fill(const LocalM3UForm &form)
    {
        editor.setName(form.name);
        editor.setAddress(form.address);
        editor.setLogoAddress(form.logoAddress);
        editor.setCountryCode(form.countryCode);
        editor.setCategory(form.category);
    }
};

} // namespace

class LocalM3UEditorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleansWhatIsRight();
    void leavesOutWhatIsEmpty();
    void checks_data();
    void checks();
    void errorGoesWithTheNextChange();
    void editingKeepsTheId();
    void openFormKeepsWhatWasTyped();
    void cancelHandsNothingOver();
    void logoFileFillsTheField();
    void logoFileOfAClosedFormIsDropped();
};

void LocalM3UEditorTest::cleansWhatIsRight()
{
    World world;
    world.editor.beginAdding(u"http://old"_s);
    QVERIFY(world.editor.isOpen() && world.editor.isNew());
    QCOMPARE(world.editor.address(), u"http://old"_s);
    world.fill(goodForm());
    world.editor.save();
    QVERIFY(!world.editor.isOpen());
    QCOMPARE(world.saved.size(), 1);
    const PlaylistEntry entry = world.saved.first();
    QVERIFY(!entry.id.isNull());
    QCOMPARE(entry,
             (PlaylistEntry{.id = entry.id,
                            .name = u"News"_s,
                            .url = QUrl(u"https://h/a.m3u8"_s),
                            .logoURL = QUrl(u"http://l/a.png"_s),
                            .groupTitle = u"Sports"_s,
                            .countryCode = u"TR"_s}));
}

void LocalM3UEditorTest::leavesOutWhatIsEmpty()
{
    World world;
    world.editor.beginAdding({});
    world.fill({u"News"_s, u"HTTP://h/a"_s, u" "_s, u" "_s, u"\n"_s});
    world.editor.save();
    QCOMPARE(world.saved.size(), 1);
    const PlaylistEntry entry = world.saved.first();
    QVERIFY(!entry.logoURL && !entry.countryCode && !entry.groupTitle);
}

void LocalM3UEditorTest::checks_data()
{
    using Field = LocalM3UEditor::Field;
    QTest::addColumn<LocalM3UForm>("form");
    QTest::addColumn<QString>("error");
    QTest::addColumn<Field>("field");
    const auto row = [](const QString &what, QString LocalM3UForm::*member, const QString &text,
                        const QString &error, Field field) {
        LocalM3UForm form = goodForm();
        form.*member = text;
        QTest::newRow(qPrintable(what + u": " + text)) << form << error << field;
    };
    for (const QString &text : {u""_s, u" \n\t\u2028"_s})
        row(u"name"_s, &LocalM3UForm::name, text, noName, Field::Name);
    for (const QString &text :
         {u""_s, u"h/a.m3u8"_s, u"ftp://h/a"_s, u"file:///a.m3u8"_s, u"http://"_s, u"http:///a"_s,
          u"http://h/a b"_s, u"http://h:port/"_s, u"http://[1/"_s, u"javascript:alert(1)"_s})
        row(u"address"_s, &LocalM3UForm::address, text, badAddress, Field::Address);
    for (const QString &text : {u"ht tp://h"_s, u"http://h:port/"_s, u"http://[1/"_s})
        row(u"logo"_s, &LocalM3UForm::logoAddress, text, badLogo, Field::LogoAddress);
    for (const QString &text : {u"T"_s, u"USA"_s, u"t r"_s})
        row(u"country"_s, &LocalM3UForm::countryCode, text, badCountry, Field::CountryCode);
    for (const QString &text :
         {u"http://h/ü.m3u8"_s, u"HTTPS://h"_s, u"http://[::1]:80/?a=b%7Cc"_s})
        row(u"good address"_s, &LocalM3UForm::address, text, {}, Field::None);
    for (const QString &text : {u"file:///home/me/a%20b.png"_s, u"logo.png"_s})
        row(u"good logo"_s, &LocalM3UForm::logoAddress, text, {}, Field::None);

    QTest::newRow("first of four")
        << LocalM3UForm{u" "_s, u"x"_s, u"http://[1/"_s, u"T"_s, {}} << noName << Field::Name;
    QTest::newRow("first of three") << LocalM3UForm{u"N"_s, u"x"_s, u"http://[1/"_s, u"T"_s, {}}
                                    << badAddress << Field::Address;
    QTest::newRow("first of two")
        << LocalM3UForm{u"N"_s, u"http://h"_s, u"http://[1/"_s, u"T"_s, {}} << badLogo
        << Field::LogoAddress;
}

void LocalM3UEditorTest::checks()
{
    QFETCH(const LocalM3UForm, form);
    QFETCH(const QString, error);
    World world;
    world.editor.beginAdding({});
    world.fill(form);
    world.editor.save();
    QCOMPARE(world.editor.errorMessage(), error);
    QTEST(world.editor.errorField(), "field");
    QCOMPARE(world.editor.isOpen(), !error.isEmpty());
    QCOMPARE(world.saved.size(), error.isEmpty() ? 1 : 0);
    // Nothing that was typed is lost.
    QCOMPARE(world.editor.name(), form.name);
    QCOMPARE(world.editor.address(), form.address);
}

void LocalM3UEditorTest::errorGoesWithTheNextChange()
{
    World world;
    world.editor.beginAdding({});
    world.editor.save();
    QCOMPARE(world.editor.errorMessage(), noName);
    world.editor.setName(u"N"_s);
    QCOMPARE(world.editor.errorMessage(), QString());
    world.editor.save();
    QCOMPARE(world.editor.errorMessage(), badAddress);
    world.editor.cancel();
    world.editor.beginAdding({});
    QCOMPARE(world.editor.errorMessage(), QString());
    QCOMPARE(world.editor.name(), QString());
}

void LocalM3UEditorTest::editingKeepsTheId()
{
    const PlaylistEntry entry{.id = QUuid::createUuid(),
                              .name = u"A"_s,
                              .url = QUrl(u"http://h/ü%20b"_s),
                              .logoURL = QUrl::fromLocalFile(u"/tmp/ü b#.png"_s),
                              .groupTitle = u"G"_s,
                              .countryCode = u"DE"_s};
    World world;
    world.editor.beginEditing(entry);
    QVERIFY(!world.editor.isNew());
    world.editor.save();
    QCOMPARE(world.saved, QList{entry});
}

void LocalM3UEditorTest::openFormKeepsWhatWasTyped()
{
    World world;
    world.editor.beginAdding({});
    world.editor.setName(u"typed"_s);
    world.editor.beginEditing(PlaylistEntry());
    QVERIFY(world.editor.isNew());
    world.editor.beginAdding(u"http://first"_s);
    world.editor.beginAdding(u"http://second"_s);
    QCOMPARE(world.editor.name(), u"typed"_s);
    QCOMPARE(world.editor.address(), u"http://first"_s);
}

void LocalM3UEditorTest::cancelHandsNothingOver()
{
    World world;
    world.editor.save();
    world.editor.beginAdding({});
    world.fill(goodForm());
    world.editor.cancel();
    world.editor.save();
    QVERIFY(!world.editor.isOpen());
    QVERIFY(world.saved.isEmpty());
}

void LocalM3UEditorTest::logoFileFillsTheField()
{
    World world;
    world.editor.beginAdding({});
    world.editor.setLogoAddress(u"http://l"_s);
    world.editor.chooseLogoFile();
    QCOMPARE(world.editor.logoAddress(), u"http://l"_s);
    QVERIFY(world.panels.requests.first().extensions.contains(u"png"_s));

    world.panels.choice = QUrl::fromLocalFile(u"/home/me/ü 1#.png"_s);
    world.editor.chooseLogoFile();
    QCOMPARE(world.editor.logoAddress(), u"file:///home/me/%C3%BC%201%23.png"_s);
}

/// Answers when the test says so.
class LateFilePanels final : public FilePanels
{
public:
    Task<std::optional<QUrl>> chooseFile(OpenPanelRequest, std::stop_token) override
    {
        co_return co_await answer;
    }
    Task<std::optional<QUrl>> chooseNewFile(SavePanelRequest, std::stop_token) override
    {
        co_return std::nullopt;
    }
    Task<std::optional<SavePanelChoice>> chooseNewFile(SavePanelRequest, SavePanelAccessory,
                                                       std::stop_token) override
    {
        co_return std::nullopt;
    }
    Task<std::optional<QUrl>> chooseFolder(FolderPanelRequest, std::stop_token) override
    {
        co_return std::nullopt;
    }

    OneShot<std::optional<QUrl>> answer;
};

void LocalM3UEditorTest::logoFileOfAClosedFormIsDropped()
{
    LateFilePanels panels;
    LocalM3UEditor editor(panels);
    editor.beginAdding({});
    editor.chooseLogoFile();
    editor.cancel();
    editor.beginAdding({});
    panels.answer.complete(QUrl(u"file:///a.png"_s));
    QCOMPARE(editor.logoAddress(), QString());
}

QTEST_GUILESS_MAIN(LocalM3UEditorTest)
#include "tst_localm3ueditor.moc"
