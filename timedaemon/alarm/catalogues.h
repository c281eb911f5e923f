// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QTranslator>

/// The texts in the user's language, and in English where a text was not translated. They are
/// in the catalogues of the call UI. A missing catalogue is not an error: the id of a text takes
/// its place. Create one object after the application object.
class Catalogues
{
public:
    /// Installs the catalogues in \a folder.
    explicit Catalogues(const QString &folder);

private:
    Q_DISABLE_COPY(Catalogues)

    QTranslator m_engineeringEnglish;
    QTranslator m_userLanguage;
};
