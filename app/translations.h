// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

class QTranslator;

// These functions load a catalogue from "/usr/share/translations" into a translator and install the
// translator, which must live until the program ends. A missing catalogue is not an error: Qt asks
// the translator that was installed last, then the one before it, and falls back to the text's id.

/// Installs "parley_eng_en", the engineering English, which has every text.
void installEngineeringEnglish(QTranslator &translator);

/// Installs the catalogue for the user's language; its name is "parley-" and the language.
void installUserLanguage(QTranslator &translator);
