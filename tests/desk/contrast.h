// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QColor>
#include <QImage>
#include <QRect>

/// The contrast that a text needs to be read by people with low vision: level AA of the Web Content
/// Accessibility Guidelines (WCAG) 2.1.
constexpr double leastContrast = 4.5;

/// Returns the contrast ratio of two opaque colours, from 1 to 21, as WCAG 2.1 defines it.
double contrast(const QColor &one, const QColor &other);

/// Returns the highest contrast that a pixel of a place has with a colour.
double highestContrast(const QImage &picture, const QRect &place, const QColor &color);

/// Returns the colour that most pixels of a text's place have, which is what the text is on.
QColor backgroundOf(const QImage &picture, const QRect &place);
