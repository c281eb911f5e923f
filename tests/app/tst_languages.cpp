// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "literals.h"
#include "uiundertest.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLocale>
#include <QTest>
#include <QXmlStreamReader>

#include <memory>

namespace {

/// A text of a catalogue's source.
struct Message
{
    QString id; ///< Empty for a text of the screens.
    QString context;
    QString source;
    QString comment;
    QStringList translations; ///< The plural forms, or one translation.
    bool hasNumber = false;
};

QString languageOf(const QFileInfo &source)
{
    return source.baseName().section(QLatin1Char('-'), 1);
}

QFileInfoList sourcesNamed(const QString &pattern)
{
    return QDir(QStringLiteral(PARLEY_TRANSLATION_SOURCES)).entryInfoList({pattern});
}

QList<Message> messagesOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QXmlStreamReader xml(&file);
    QList<Message> messages;
    QString context;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        const auto name = xml.name();
        if (name == u"name") {
            context = xml.readElementText();
        } else if (name == u"message") {
            Message message;
            message.id = xml.attributes().value(QLatin1String("id")).toString();
            message.context = context;
            message.hasNumber = xml.attributes().value(QLatin1String("numerus")) == u"yes";
            messages.append(message);
        } else if (name == u"source") {
            messages.last().source = xml.readElementText();
        } else if (name == u"comment") {
            messages.last().comment = xml.readElementText();
        } else if (name == u"numerusform"
                   || (name == u"translation" && !messages.constLast().hasNumber)) {
            messages.last().translations.append(xml.readElementText());
        }
    }
    return xml.hasError() ? QList<Message>() : messages;
}

/// Returns \a texts as the arguments of a function in JavaScript.
QString quoted(const QStringList &texts)
{
    const QByteArray list = QJsonDocument(QJsonArray::fromStringList(texts)).toJson();
    return QString::fromUtf8(list.trimmed().mid(1).chopped(1));
}

} // namespace

/// The catalogues that are installed, shown by the process in the locale of their language.
class TestLanguages : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void showsTheTextsOfTheProcess_data();
    void showsTheTextsOfTheProcess();
    void showsTheTextsOfTheScreens_data();
    void showsTheTextsOfTheScreens();

private:
    bool startIn(const QString &locale);

    std::unique_ptr<UiUnderTest> m_ui;
};

void TestLanguages::init()
{
    m_ui = std::make_unique<UiUnderTest>();
    QVERIFY(m_ui->isValid());
    m_ui->sandbox().place(u"/usr/share/translations"_s, QStringLiteral(PARLEY_CATALOGUES));
}

void TestLanguages::cleanup()
{
    m_ui->stop();
    QCOMPARE(m_ui->takeLog().join(u'\n'), QString());
    m_ui.reset();
}

bool TestLanguages::startIn(const QString &locale)
{
    m_ui->setEnvironment(u"LC_ALL"_s, locale + u".UTF-8"_s);
    return m_ui->startProbe({u"-prestart"_s});
}

void TestLanguages::showsTheTextsOfTheProcess_data()
{
    QTest::addColumn<QFileInfo>("source");
    const QFileInfoList sources = sourcesNamed(u"parley-*.ts"_s);
    QVERIFY(!sources.isEmpty());
    for (const QFileInfo &source : sources)
        QTest::newRow(qUtf8Printable(languageOf(source))) << source;
}

void TestLanguages::showsTheTextsOfTheProcess()
{
    QFETCH(QFileInfo, source);

    const QList<Message> messages = messagesOf(source.filePath());
    QVERIFY(!messages.isEmpty());
    QVERIFY(startIn(QLocale(languageOf(source)).name()));
    for (const Message &message : messages) {
        QVERIFY(!message.id.isEmpty());
        QVERIFY(message.translations.constFirst() != message.source);
        QCOMPARE(m_ui->evaluate(u"qsTrId("_s + quoted({message.id}) + u')').toString(),
                 message.translations.constFirst());
    }
}

void TestLanguages::showsTheTextsOfTheScreens_data()
{
    QTest::addColumn<QFileInfo>("source");
    const QFileInfoList sources = sourcesNamed(u"screens-*.ts"_s);
    QVERIFY(!sources.isEmpty());
    for (const QFileInfo &source : sources)
        QTest::newRow(qUtf8Printable(languageOf(source))) << source;
}

void TestLanguages::showsTheTextsOfTheScreens()
{
    QFETCH(QFileInfo, source);

    const QList<Message> messages = messagesOf(source.filePath());
    QVERIFY(!messages.isEmpty());
    QVERIFY(startIn(QLocale(languageOf(source)).name()));
    for (const Message &message : messages) {
        const QString text = quoted({message.context, message.source, message.comment});
        QSet<QString> shown;
        if (!message.hasNumber) {
            shown.insert(m_ui->evaluate(u"qsTranslate("_s + text + u')').toString());
        } else {
            // These are of every form that a language has.
            for (const int number : {0, 1, 2, 3, 5, 11, 100}) {
                const QString numbered = QString::number(number);
                shown.insert(m_ui->evaluate(u"qsTranslate(%1, %2)"_s.arg(text, numbered))
                                 .toString()
                                 .replace(numbered, u"%n"_s));
            }
        }
        QCOMPARE(shown, QSet<QString>(message.translations.cbegin(), message.translations.cend()));
    }
}

QTEST_GUILESS_MAIN(TestLanguages)

#include "tst_languages.moc"
