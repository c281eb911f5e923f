// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "contrast.h"
#include "display.h"
#include "literals.h"
#include "screenreader.h"
#include "scriptedservice.h"
#include "simulatedtelephony.h"
#include "uiundertest.h"

#include <QColor>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRectF>
#include <QRegularExpression>
#include <QTest>

#include <algorithm>
#include <functional>
#include <memory>

namespace {

constexpr int patience = 30000;

const QSize phoneSize(360, 640);

/// What a screen shows, as its text and its place on the display.
struct SeenText
{
    QString text;
    QColor color;
    QRectF place;

    /// Returns the place without the room for accents and between lines.
    QRectF letters() const { return place.adjusted(0, place.height() / 4, 0, -place.height() / 4); }
};

/// How a screen is asked for, and the description with which it answers.
struct Request
{
    using Step = std::function<bool(UiUnderTest &, const SimulatedTelephony &)>;

    QVector<Step> steps;
    QString summary;
};

Request::Step calling(const QString &method, const QVariantList &arguments = {})
{
    return [=](UiUnderTest &ui, const SimulatedTelephony &) {
        return ui.call(method, arguments).type() == QDBusMessage::ReplyMessage;
    };
}

Request opening(const QString &url, const QString &summary)
{
    return {{calling(u"openUrl"_s, {QStringList{url}})}, summary};
}

Request::Step ringing(const QString &number)
{
    return
        [=](UiUnderTest &, const SimulatedTelephony &telephony) { return telephony.ring(number); };
}

Request::Step remote(const QString &action)
{
    return [=](UiUnderTest &, const SimulatedTelephony &telephony) {
        return telephony.remote(action);
    };
}

Request::Step managing(const QString &method)
{
    return [=](UiUnderTest &, const SimulatedTelephony &telephony) {
        return telephony.manage(method);
    };
}

/// Waits for a line of the log.
Request::Step showing(const QString &summary)
{
    return [=](UiUnderTest &ui, const SimulatedTelephony &) {
        return ui.logs(u"screens: screen: "_s + summary);
    };
}

/// The screens show a call before the modem has it, and nobody could end it then.
bool reachesTheModem(UiUnderTest &, const SimulatedTelephony &telephony)
{
    return QTest::qWaitFor([&] { return telephony.hasCalls(); }, patience);
}

const QVector<Request> &requests()
{
    const QVector<Request::Step> dialled{calling(u"dial"_s, {u"+49 30 1234567"_s}),
                                         showing(u"calling +49301234567"_s), &reachesTheModem};
    const QVector<Request::Step> answered{
        // The modem tells the screens before the stack has the call.
        [](UiUnderTest &, const SimulatedTelephony &telephony) {
            return QTest::qWaitFor([&] { return telephony.remote(u"answer"_s); }, patience);
        },
        showing(u"ongoing +49301234567"_s)};
    const QVector<Request::Step> waiting{ringing(u"5550199"_s)};
    const QVector<Request::Step> both =
        dialled + answered + waiting + QVector<Request::Step>{managing(u"HoldAndAnswer"_s)};
    static const QVector<Request> all{
        opening(u"tel:555*1"_s, u"dial pad 555*1"_s),
        {{ringing(u"5550145"_s)}, u"incoming 5550145"_s},
        {{ringing(u"5550145"_s), showing(u"incoming 5550145"_s), remote(u"hangup"_s)},
         u"missed 5550145"_s},
        opening(u"replies:"_s, u"replies"_s),
        opening(u"https://example.org/voicemail"_s, u"page https://example.org/voicemail"_s),
        opening(u"reminders:"_s, u"reminders: none"_s),
        {{calling(u"openContactCard"_s, {u"5550123"_s})}, u"contact 5550123"_s},
        opening(u"remind:5550123"_s, u"remind 5550123"_s),
        {{calling(u"showCellularErrorDialog"_s)}, u"cellular error"_s},
        {dialled, u"calling +49301234567"_s},
        {dialled + answered, u"ongoing +49301234567"_s},
        {dialled + answered + waiting, u"waiting 5550199"_s},
        {both, u"ongoing 5550199; held +49301234567"_s},
        {both + QVector<Request::Step>{managing(u"CreateMultiparty"_s)},
         u"conference +49301234567, 5550199"_s},
    };
    return all;
}

} // namespace

/// The screens for eyes that see little or nothing, on displays of every shape, and in other
/// languages.
class TestEyes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();

    void tellsAScreenReader_data();
    void tellsAScreenReader();
    void obeysAScreenReader();
    void forgetsWhatWasWantedOfACallThatHasEnded();
    void saysThatNoTelephonyAnswers();
    void hasEnoughContrast();
    void fitsTheDisplay_data();
    void fitsTheDisplay();
    void usesTheWidth();
    void drawsIconsWithThePixelsOfTheDisplay();
    void isMirrored();
    void isTranslated();

private:
    bool start(const QSize &size, const QMap<QString, QString> &environment = {});
    bool startScreens(const QSize &size, const QMap<QString, QString> &environment = {});
    bool request(const Request &wanted);
    bool show(const QString &summary);
    void readReports();
    QVector<SeenText> texts() const;
    QRectF placeOf(const QString &text) const;
    QStringList controls(const ScreenReader &reader) const;
    AccessibleObject find(const ScreenReader &reader, const QString &name) const;
    int blurredPixels(int scale);
    bool translate(const QString &folder) const;

    std::unique_ptr<XDisplay> m_display;
    std::unique_ptr<UiUnderTest> m_ui;
    std::unique_ptr<SimulatedTelephony> m_telephony;
    bool m_isTranslated = false;
    QJsonObject m_seen; ///< What the screens have reported last.
};

void TestEyes::cleanup()
{
    m_telephony.reset();
    m_ui.reset();
    m_display.reset();
    m_seen = {};
    m_isTranslated = false;
}

/// Starts the screens with telephony.
bool TestEyes::start(const QSize &size, const QMap<QString, QString> &environment)
{
    if (!m_ui)
        m_ui = std::make_unique<UiUnderTest>();
    m_telephony = std::make_unique<SimulatedTelephony>(*m_ui);
    return m_telephony->start() && startScreens(size, environment)
        && m_ui->logs(u"screens: telephony: ready"_s);
}

bool TestEyes::startScreens(const QSize &size, const QMap<QString, QString> &environment)
{
    m_display = std::make_unique<XDisplay>(size);
    if (const QString error = m_display->start(); !error.isEmpty()) {
        qWarning("%s", qUtf8Printable(error));
        return false;
    }
    if (!m_isTranslated)
        m_ui->hideCatalogues();
    for (const auto &variables : {m_display->environment(), environment}) {
        for (auto it = variables.cbegin(); it != variables.cend(); ++it)
            m_ui->setEnvironment(it.key(), it.value());
    }
    return m_ui->isValid()
        && m_ui->startScreens(QStringLiteral(PARLEY_DESK_FOLDER) + u"/eyes.qml"_s);
}

void TestEyes::readReports()
{
    const QString prefix = u"qml: seen: "_s;
    const QStringList lines = m_ui->takeLog();
    for (const QString &line : lines) {
        if (line.startsWith(prefix))
            m_seen = QJsonDocument::fromJson(line.mid(prefix.size()).toUtf8()).object();
    }
}

/// Asks for a screen, and waits until a frame shows it. Before, there is no call, and another
/// screen, so that the screens log what they show.
bool TestEyes::request(const Request &wanted)
{
    if (!m_telephony->endAll() || !calling(u"openContactCard"_s, {u"1"_s})(*m_ui, *m_telephony)
        || !std::all_of(wanted.steps.cbegin(), wanted.steps.cend(),
                        [this](const auto &step) { return step(*m_ui, *m_telephony); }))
        return false;
    const auto isSeen = [&] {
        readReports();
        return m_seen.value(u"summary"_s) == wanted.summary;
    };
    if (QTest::qWaitFor(isSeen, patience))
        return true;
    qWarning("The screen is: %s", qUtf8Printable(m_seen.value(u"summary"_s).toString()));
    return false;
}

/// Asks for the screen that describes itself like this.
bool TestEyes::show(const QString &summary)
{
    const auto wanted = std::find_if(requests().cbegin(), requests().cend(),
                                     [&](const Request &one) { return one.summary == summary; });
    return wanted != requests().cend() && request(*wanted);
}

QVector<SeenText> TestEyes::texts() const
{
    QVector<SeenText> found;
    const QJsonArray all = m_seen.value(u"texts"_s).toArray();
    for (const QJsonValue &one : all) {
        const QJsonArray place = one[u"place"_s].toArray();
        found.append({one[u"text"_s].toString(), QColor(one[u"color"_s].toString()),
                      QRectF(place.at(0).toDouble(), place.at(1).toDouble(), place.at(2).toDouble(),
                             place.at(3).toDouble())});
    }
    return found;
}

/// Returns where a text is, or an empty rectangle.
QRectF TestEyes::placeOf(const QString &text) const
{
    const QVector<SeenText> all = texts();
    const auto found = std::find_if(all.cbegin(), all.cend(),
                                    [&](const SeenText &one) { return one.text == text; });
    return found == all.cend() ? QRectF() : found->place;
}

/// Returns the controls that the user can use, in their order.
QStringList TestEyes::controls(const ScreenReader &reader) const
{
    QStringList found;
    const QVector<AccessibleObject> objects = reader.objects();
    for (const AccessibleObject &one : objects) {
        if (!one.isControl())
            continue;
        const bool isButton = one.role == u"push button"_s && one.actions.contains(u"Press"_s);
        found.append(isButton ? one.name : one.role + u": "_s + one.name);
    }
    return found;
}

AccessibleObject TestEyes::find(const ScreenReader &reader, const QString &name) const
{
    const QVector<AccessibleObject> objects = reader.objects();
    const auto found = std::find_if(objects.cbegin(), objects.cend(),
                                    [&](const AccessibleObject &one) { return one.name == name; });
    return found == objects.cend() ? AccessibleObject() : *found;
}

void TestEyes::tellsAScreenReader_data()
{
    QTest::addColumn<QString>("summary");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("dial pad") << u"dial pad 555*1"_s << u"Dial pad"_s
                              << QStringList{u"Erase"_s, u"1"_s,         u"2"_s,    u"3"_s,
                                             u"4"_s,     u"5"_s,         u"6"_s,    u"7"_s,
                                             u"8"_s,     u"9"_s,         u"Star"_s, u"0"_s,
                                             u"Hash"_s,  u"Reminders"_s, u"Call"_s, u"Replies"_s};
    QTest::newRow("incoming call") << u"incoming 5550145"_s << u"Incoming call from 5550145"_s
                                   << QStringList{u"parley-me-please_call_later"_s,
                                                  u"parley-me-cant_talk_at_the_moment"_s,
                                                  u"parley-me-will_call_back"_s,
                                                  u"Decline"_s,
                                                  u"Remind me"_s,
                                                  u"Replies"_s,
                                                  u"Answer"_s};
    QTest::newRow("quick replies")
        << u"replies"_s << u"Quick replies"_s
        << QStringList{
               u"text: Reply 1"_s, u"Remove reply 1"_s, u"text: Reply 2"_s,   u"Remove reply 2"_s,
               u"text: Reply 3"_s, u"Remove reply 3"_s, u"text: New reply"_s, u"Defaults"_s,
               u"Save"_s,          u"Close"_s};
    QTest::newRow("page") << u"page https://example.org/voicemail"_s << u"Open page"_s
                          << QStringList{u"Close"_s};
    QTest::newRow("reminders") << u"reminders: none"_s << u"Reminders"_s << QStringList{u"Close"_s};
    QTest::newRow("contact card") << u"contact 5550123"_s << u"Contact card of 5550123"_s
                                  << QStringList{u"Call"_s, u"Remind me"_s, u"Close"_s};
    QTest::newRow("reminder") << u"remind 5550123"_s << u"Remind me to call back"_s
                              << QStringList{u"In 1 minute"_s, u"In 30 minutes"_s, u"In 1 hour"_s,
                                             u"Tomorrow morning"_s, u"Close"_s};
    QTest::newRow("error") << u"cellular error"_s << u"Cellular network unavailable"_s
                           << QStringList{u"OK"_s};
    QTest::newRow("missed call") << u"missed 5550145"_s << u"Contact card of 5550145"_s
                                 << QStringList{u"Call"_s, u"Remind me"_s, u"Close"_s};
    QTest::newRow("call") << u"ongoing +49301234567"_s << u"+49301234567"_s
                          << QStringList{u"Hold"_s,    u"Add call"_s,  u"Mute"_s,    u"Keypad"_s,
                                         u"Speaker"_s, u"Remind me"_s, u"End call"_s};
    QTest::newRow("waiting call") << u"waiting 5550199"_s << u"Incoming call from 5550199"_s
                                  << QStringList{u"parley-me-please_call_later"_s,
                                                 u"parley-me-cant_talk_at_the_moment"_s,
                                                 u"parley-me-will_call_back"_s,
                                                 u"Decline"_s,
                                                 u"Remind me"_s,
                                                 u"End the other call and answer"_s,
                                                 u"Answer"_s};
    QTest::newRow("two calls") << u"ongoing 5550199; held +49301234567"_s << u"5550199"_s
                               << QStringList{u"+49301234567"_s, u"Swap"_s,      u"Join"_s,
                                              u"Add call"_s,     u"Mute"_s,      u"Keypad"_s,
                                              u"Speaker"_s,      u"Remind me"_s, u"End call"_s};
    QTest::newRow("conference") << u"conference +49301234567, 5550199"_s << u"Conference"_s
                                << QStringList{u"+49301234567"_s, u"5550199"_s,   u"Hold"_s,
                                               u"Add call"_s,     u"Mute"_s,      u"Keypad"_s,
                                               u"Speaker"_s,      u"Remind me"_s, u"End call"_s};
}

/// Everything that the keyboard reaches is a control with a role and a name, and nothing else is.
void TestEyes::tellsAScreenReader()
{
    QFETCH(QString, summary);
    QFETCH(QString, title);
    QFETCH(QStringList, expected);

    QVERIFY(start(phoneSize));
    const ScreenReader reader(m_ui->sessionBus().address());
    QVERIFY(show(summary));
    const auto found = [&] {
        QStringList names = controls(reader);
        names.removeAll(u"This evening"_s); // It is only there before the evening.
        return names;
    };
    QTRY_COMPARE_WITH_TIMEOUT(found(), expected, patience);
    QCOMPARE(controls(reader).size(), m_seen.value(u"stops"_s).toInt());
    const AccessibleObject screen = find(reader, title);
    QVERIFY2(screen.role == u"panel"_s || screen.role == u"dialog"_s, qUtf8Printable(screen.role));
    QVERIFY(screen.isFocusable);
}

void TestEyes::obeysAScreenReader()
{
    QVERIFY(start(phoneSize));
    ScriptedService audio(m_ui->sessionBus().address(), u"org.mobian_project.CallAudio"_s,
                          u"/org/mobian_project/CallAudio"_s);
    const ScreenReader reader(m_ui->sessionBus().address());
    QVERIFY(show(u"dial pad 555*1"_s));
    for (const QString &name : {u"7"_s, u"Star"_s, u"Erase"_s, u"Call"_s}) {
        QTRY_VERIFY2(find(reader, name).isControl(), qUtf8Printable(name));
        QVERIFY(reader.act(find(reader, name)));
    }
    QVERIFY(m_ui->logs(u"screens: screen: calling 555*17"_s));
    QTRY_COMPARE(find(reader, u"Mute"_s).role, u"push button"_s);
    QVERIFY(!find(reader, u"Mute"_s).isChecked);
    QVERIFY(reader.act(find(reader, u"Mute"_s)));
    QTRY_VERIFY(find(reader, u"Mute"_s).isChecked);
    const QDBusMessage voice = audio.next(u"SelectMode"_s);
    QCOMPARE(voice.arguments(), QVariantList({1U}));
    audio.reply(voice, {true});
    const QDBusMessage mute = audio.next(u"MuteMic"_s);
    QCOMPARE(mute.arguments(), QVariantList({true}));
    audio.fail(mute, u"org.mobian_project.CallAudio.Error"_s, u"no microphone"_s);
    QTRY_VERIFY(!find(reader, u"Mute"_s).isChecked);
}

/// The stack says that the tones could not be sent.
void TestEyes::forgetsWhatWasWantedOfACallThatHasEnded()
{
    QVERIFY(start(phoneSize));
    const ScreenReader reader(m_ui->sessionBus().address());
    QVERIFY(show(u"ongoing +49301234567"_s));
    QTRY_VERIFY(find(reader, u"Keypad"_s).isControl());
    QVERIFY(reader.act(find(reader, u"Keypad"_s)));
    for (const QString &tone : {u"1"_s, u"2"_s, u"3"_s, u"4"_s, u"5"_s, u"6"_s, u"7"_s, u"8"_s}) {
        QTRY_VERIFY(find(reader, tone).isControl());
        QVERIFY(reader.act(find(reader, tone)));
    }
    QVERIFY(m_telephony->remote(u"hangup"_s));
    QVERIFY(m_ui->logs(u"screens: screen: dial pad"_s));
    // What the stack has said by now is handled before this.
    m_ui->call(u"openUrl"_s, {QStringList{u"tel:5550199"_s}});
    QVERIFY(m_ui->logs(u"screens: screen: dial pad 5550199"_s));
    const QStringList rest = m_ui->takeLog().filter(u"fail"_s);
    QVERIFY2(rest.isEmpty(), qUtf8Printable(rest.join(u'\n')));
}

void TestEyes::saysThatNoTelephonyAnswers()
{
    m_ui = std::make_unique<UiUnderTest>();
    m_ui->setEnvironment(u"QML2_IMPORT_PATH"_s, qEnvironmentVariable("PARLEY_QML_MODULES"));
    QVERIFY(startScreens(phoneSize));
    const auto says = [this](const QString &text) {
        readReports();
        return placeOf(text).isValid();
    };
    QTRY_VERIFY_WITH_TIMEOUT(says(u"The telephony does not run"_s), patience);
    QTRY_VERIFY_WITH_TIMEOUT(says(u"No telephony answers"_s), patience);
    QVERIFY(!says(u"Checking SIMs…"_s));
}

void TestEyes::hasEnoughContrast()
{
    QVERIFY(start(phoneSize));
    for (const Request &one : requests()) {
        QVERIFY2(request(one), qUtf8Printable(one.summary));
        QVERIFY(texts().size() > 1);
        QString poor;
        // The picture may be older than the report. A text that is drawn stands out from what is
        // around it, if not in its full colour.
        const auto isReadable = [&] {
            readReports();
            poor.clear();
            const QImage picture = m_display->picture();
            const QVector<SeenText> all = texts();
            for (const SeenText &text : all) {
                const QRect place = text.place.toAlignedRect();
                const QColor background = backgroundOf(picture, place);
                const double ratio = contrast(text.color, background);
                if (ratio < leastContrast || highestContrast(picture, place, background) < 3)
                    poor +=
                        u"%1: %2 on %3, %4\n"_s.arg(text.text, text.color.name(), background.name())
                            .arg(ratio);
            }
            return poor.isEmpty();
        };
        QVERIFY2(QTest::qWaitFor(isReadable, 5000), qUtf8Printable(one.summary + u": "_s + poor));
    }
}

void TestEyes::fitsTheDisplay_data()
{
    QTest::addColumn<QSize>("size");

    for (const QSize &size : {phoneSize, QSize(720, 1440), QSize(640, 360), QSize(1280, 800),
                              QSize(768, 1024), QSize(800, 720)})
        QTest::addRow("%dx%d", size.width(), size.height()) << size;
}

/// Every text is on the display, and none on another.
void TestEyes::fitsTheDisplay()
{
    QFETCH(QSize, size);

    QVERIFY(start(size));
    for (const Request &one : requests()) {
        QVERIFY2(request(one), qUtf8Printable(one.summary));
        const QVector<SeenText> all = texts();
        QVERIFY(all.size() > 1);
        for (int i = 0; i < all.size(); ++i) {
            const SeenText &text = all.at(i);
            QVERIFY2(QRectF(QPointF(), size).contains(text.place),
                     qUtf8Printable(one.summary + u": "_s + text.text));
            for (int j = 0; j < i; ++j)
                QVERIFY2(
                    !text.letters().intersects(all.at(j).letters()),
                    qUtf8Printable(one.summary + u": "_s + text.text + u" on "_s + all.at(j).text));
        }
    }
}

void TestEyes::usesTheWidth()
{
    const QSize size(1280, 800);
    QVERIFY(start(size));
    QVERIFY(show(u"dial pad 555*1"_s));
    QVERIFY(placeOf(u"555∗1"_s).right() < size.width() / 2.0);
    QVERIFY(placeOf(u"1"_s).left() > size.width() / 2.0);
    QVERIFY(placeOf(u"#"_s).bottom() - placeOf(u"1"_s).top() > size.height() / 2.0);
    QVERIFY(show(u"incoming 5550145"_s));
    QVERIFY(placeOf(u"5550145"_s).right() < size.width() / 2.0);
    QVERIFY(placeOf(u"Decline"_s).left() > size.width() / 2.0);
}

/// Returns how many pixels of an icon on a display are neither of its colour nor of the colour
/// behind it, or -1. The display has \a scale pixels for a logical one in each direction.
int TestEyes::blurredPixels(int scale)
{
    if (!start({540, 960}, {{u"QT_SCALE_FACTOR"_s, QString::number(scale)}})
        || !show(u"incoming 5550145"_s))
        return -1;
    const QRectF label = placeOf(u"Answer"_s);
    QRect icon(0, 0, 60, 60);
    icon.moveCenter((QPointF(label.center().x(), label.top()) * scale).toPoint() - QPoint(0, 60));
    const QColor ink(u"#f3f6fa"_s);
    const QColor background(u"#1b8043"_s);
    int blurred = 0;
    const auto isDrawn = [&] {
        const QImage picture = m_display->picture().copy(icon);
        int drawn = 0;
        blurred = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                const QColor pixel = picture.pixelColor(x, y);
                drawn += pixel == ink ? 1 : 0;
                blurred += pixel == ink || pixel == background ? 0 : 1;
            }
        }
        return drawn > 200 && backgroundOf(picture, picture.rect()) == background;
    };
    return QTest::qWaitFor(isDrawn, patience) ? blurred : -1;
}

/// An icon that is drawn with the logical pixels and enlarged has broad soft edges.
void TestEyes::drawsIconsWithThePixelsOfTheDisplay()
{
    const int plain = blurredPixels(1);
    cleanup();
    const int dense = blurredPixels(3);
    QVERIFY2(plain > 0 && dense > 0 && dense < 1.5 * plain,
             qUtf8Printable(u"%1, %2"_s.arg(plain).arg(dense)));
}

void TestEyes::isMirrored()
{
    QVERIFY(start(phoneSize, {{u"LC_ALL"_s, u"ar_EG.UTF-8"_s}}));
    QVERIFY(show(u"incoming 5550145"_s));
    QVERIFY(placeOf(u"Answer"_s).right() < placeOf(u"Decline"_s).left());
    QVERIFY(show(u"dial pad 555*1"_s));
    QVERIFY(placeOf(u"Replies"_s).right() < placeOf(u"Reminders"_s).left());
    QVERIFY(placeOf(u"1"_s).right() < placeOf(u"2"_s).left());
}

/// Writes a catalogue of all texts of the screens for German, each of them in « and ».
bool TestEyes::translate(const QString &folder) const
{
    const QString source = folder + u"/texts.ts"_s;
    if (QProcess::execute(QStringLiteral(PARLEY_LUPDATE),
                          {u"-silent"_s, QStringLiteral(PARLEY_SCREENS_SOURCES),
                           u"-target-language"_s, u"de"_s, u"-ts"_s, source})
        != 0)
        return false;
    QFile file(source);
    if (!file.open(QIODevice::ReadWrite))
        return false;
    QString texts = QString::fromUtf8(file.readAll());
    const QRegularExpression plain(
        u"<source>([^<]*)</source>(\\s*(?:<comment>[^<]*</comment>\\s*)?)"
        "<translation type=\"unfinished\"></translation>"_s);
    texts.replace(plain, u"<source>\\1</source>\\2<translation>«\\1»</translation>"_s);
    const QRegularExpression plural(
        u"<source>([^<]*)</source>\\s*<translation type=\"unfinished\">\\s*"
        "<numerusform></numerusform>\\s*<numerusform></numerusform>\\s*</translation>"_s);
    texts.replace(plural,
                  u"<source>\\1</source><translation><numerusform>«\\1»</numerusform>"
                  "<numerusform>«\\1»</numerusform></translation>"_s);
    if (texts.contains(u"unfinished"_s) || !file.resize(0) || file.write(texts.toUtf8()) < 0)
        return false;
    file.close();
    return QProcess::execute(QStringLiteral(PARLEY_LRELEASE),
                             {u"-silent"_s, source, u"-qm"_s, folder + u"/parley-de.qm"_s})
        == 0;
}

/// What the user reads or hears is translated, and the log is not.
void TestEyes::isTranslated()
{
    if (!Sandbox::isPossible())
        QSKIP("bwrap cannot be used here.");
    m_ui = std::make_unique<UiUnderTest>();
    const QString folder = m_ui->folder() + u"/translations"_s;
    QVERIFY(QDir().mkpath(folder) && translate(folder));
    m_ui->sandbox().place(u"/usr/share/translations"_s, folder);
    m_isTranslated = true;
    QVERIFY(start(phoneSize, {{u"LC_ALL"_s, u"de_DE.UTF-8"_s}}));
    const ScreenReader reader(m_ui->sessionBus().address());
    const QRegularExpression data(
        u"^(|[0-9 :+*#∗]*|[A-Z]{3,4}|https://.*|parley-.*|application|.*/parley-ui|parley)$"_s);
    for (const Request &one : requests()) {
        QVERIFY2(request(one), qUtf8Printable(one.summary));
        QVERIFY(texts().size() > 1);
        for (const SeenText &text : texts())
            QVERIFY2(text.text.contains(u"«"_s) || data.match(text.text).hasMatch(),
                     qUtf8Printable(text.text));
        for (const AccessibleObject &object : reader.objects()) {
            for (const QString &text : {object.name, object.description})
                QVERIFY2(text.contains(u"«"_s) || data.match(text).hasMatch(),
                         qUtf8Printable(text));
        }
    }
}

QTEST_GUILESS_MAIN(TestEyes)

#include "tst_eyes.moc"
