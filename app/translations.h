// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

class QTranslator;

/// Both load a catalogue from "/usr/share/translations" into \a translator and install it, which
/// must live until the program ends. A catalogue that is not there is not an error: Qt asks the
/// translator installed last first, then the one before it, and falls back to the text's id.

/// "parley_eng_en": engineering English, which has every text.
void installEngineeringEnglish(QTranslator &translator);

/// "parley-" and the user's language.
void installUserLanguage(QTranslator &translator);
