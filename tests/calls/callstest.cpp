// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "callstest.h"

#include "literals.h"
#include "telephony.h"

#include <QAbstractItemModel>
#include <QSignalSpy>
#include <QTest>

void CallsTest::initTestCase()
{
    QVERIFY(m_bus.start(m_folder.path(), u"both"_s));
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_bus.address().toUtf8());
    qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus.address().toUtf8());
}

void CallsTest::init()
{
    m_log = std::make_unique<MessageLog>();
}

void CallsTest::cleanup()
{
    QCOMPARE(m_log->take().join(u'\n'), QString());
    m_log.reset();
}

QVariant CallsTest::role(const QAbstractItemModel &model, int row, const QByteArray &name)
{
    return model.data(model.index(row, 0), model.roleNames().key(name));
}

QString CallsTest::takeFailure(QSignalSpy &failures,
                               const std::function<QString(const QVariantList &)> &subject)
{
    if (failures.isEmpty() && !failures.wait())
        return {};
    const QVariantList values = failures.takeFirst();
    if (values.constLast().toString().isEmpty())
        return u"no explanation"_s;
    const auto error = static_cast<Telephony::Error>(values.at(values.size() - 2).toInt());
    return subject(values) + u' '
        + QString::fromLatin1(QMetaEnum::fromType<Telephony::Error>().valueToKey(error));
}
