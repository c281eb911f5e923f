// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "simfiles.h"

namespace {

enum Command { ReadBinary = 176, ReadRecord = 178, GetResponse = 192 };

enum Identifier {
    CardNumber = 0x2fe2,
    OwnNumbers = 0x6f40,
    NetworkName = 0x6f46,
    Administration = 0x6fad,
    EmergencyNumbers = 0x6fb7,
};

const QByteArray noFile = QByteArrayLiteral("148,4");
const QByteArray wrongPlace = QByteArrayLiteral("148,2");
const QByteArray wrongCommand = QByteArrayLiteral("109,0");

/// Returns digits as pairs of swapped half-bytes, \a size bytes long.
QByteArray swapped(const QString &digits, int size)
{
    const QByteArray given = digits.toLatin1().leftJustified(2 * size, 'F', true);
    QByteArray hex;
    for (int i = 0; i < 2 * size; i += 2)
        hex.append(given.at(i + 1)).append(given.at(i));
    return QByteArray::fromHex(hex);
}

QByteArray ok(const QByteArray &data)
{
    return "144,0,\"" + data.toHex().toUpper() + '"';
}

} // namespace

SimFiles::SimFiles(const Sim &sim, const QStringList &emergencyNumbers, const QString &networkName)
{
    m_files.insert(CardNumber, {swapped(cardIdentifier(sim), 10)});
    // The code of the network has two digits.
    m_files.insert(Administration, {QByteArray::fromHex("00000002")});
    QByteArray emergency;
    for (const QString &number : emergencyNumbers)
        emergency += swapped(number, 3);
    m_files.insert(EmergencyNumbers, {emergency});
    // One record without a name: the length, the type of an international number, the digits.
    const QByteArray own = QByteArray::fromHex("0791") + swapped(ownNumber(sim).mid(1), 10);
    m_files.insert(OwnNumbers, {own + QByteArray::fromHex("FFFF"), 14});
    // The name stands for that of the home network.
    m_files.insert(NetworkName, {'\0' + networkName.toLatin1().leftJustified(16, '\xff', true)});
}

QByteArray SimFiles::answer(int command, int file, int p1, int p2, int length) const
{
    const auto found = m_files.constFind(file);
    if (found == m_files.cend())
        return noFile;
    const QByteArray &content = found->content;
    const int records = found->recordLength;
    if (command == GetResponse) {
        QByteArray header = QByteArray::fromHex("0000000000000400000000050200");
        header[2] = static_cast<char>(content.size() >> 8);
        header[3] = static_cast<char>(content.size());
        header[4] = static_cast<char>(file >> 8);
        header[5] = static_cast<char>(file);
        header[13] = records == 0 ? '\0' : '\1';
        return ok(header + static_cast<char>(records));
    }
    const auto isByte = [](int value) { return value >= 0 && value < 256; };
    if (!isByte(p1) || !isByte(p2) || !isByte(length))
        return wrongPlace;
    const int offset = command == ReadRecord ? (p1 - 1) * records : p1 * 256 + p2;
    const bool isRead = command == ReadRecord ? records > 0 : command == ReadBinary && records == 0;
    if (!isRead)
        return wrongCommand;
    const int size = length == 0 ? static_cast<int>(content.size()) - offset : length;
    const bool isInside =
        offset >= 0 && isByte(size) && size > 0 && offset + size <= content.size();
    return isInside ? ok(content.mid(offset, size)) : wrongPlace;
}

QString SimFiles::cardIdentifier(const Sim &sim)
{
    return QLatin1String("8900") + sim.imsi.rightJustified(15, QLatin1Char('0'));
}

QString SimFiles::ownNumber(const Sim &sim)
{
    return QLatin1String("+1555") + sim.imsi.right(7).rightJustified(7, QLatin1Char('0'));
}
