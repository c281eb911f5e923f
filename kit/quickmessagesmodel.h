// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QPointer>
#include <QQmlParserStatus>
#include <QStringListModel>

class Kit;

/// The quick replies of the kit. All models show and save the same messages, whatever their file;
/// without one they save nothing. Nothing is read or written on the disk.
class QuickMessagesModel : public QStringListModel, public QQmlParserStatus
{
    Q_OBJECT
    Q_INTERFACES(QQmlParserStatus)
    Q_PROPERTY(QString filePath READ filePath WRITE setFilePath NOTIFY filePathChanged)
    Q_PROPERTY(
        QStringList defaultValue READ defaultValue WRITE setDefaultValue NOTIFY defaultValueChanged)
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    Q_PROPERTY(bool active READ active WRITE setActive NOTIFY activeChanged)
    Q_PROPERTY(bool hasError READ hasError NOTIFY hasErrorChanged)

public:
    explicit QuickMessagesModel(QObject *parent = nullptr);

    QString filePath() const { return m_filePath; }
    void setFilePath(const QString &path);
    QStringList defaultValue() const { return m_defaultValue; }
    void setDefaultValue(const QStringList &messages);
    int count() const { return rowCount(); }
    bool active() const { return m_active; }
    void setActive(bool active);
    bool hasError() const { return false; }

    void classBegin() override;
    void componentComplete() override { }

    Q_INVOKABLE void save();
    Q_INVOKABLE void reset();
    Q_INVOKABLE void append(const QString &string);
    Q_INVOKABLE void remove(int index);

Q_SIGNALS:
    void filePathChanged();
    void defaultValueChanged();
    void activeChanged();
    void hasErrorChanged();
    void countChanged();

private:
    void load();

    QPointer<Kit> m_kit;
    QString m_filePath;
    QStringList m_defaultValue;
    bool m_active = true;
};
