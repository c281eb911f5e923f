// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

.pragma library

var longest = 500;

// What comes from the bus may be of any length, and is to be shown and reported on one line.
function clean(text) {
    var head = text.slice(0, longest + 1);
    var line = head.replace(/[\x00-\x1f\x7f-\x9f\u2028-\u202e\u2066-\u2069]+/g, " ").trim();
    return line.length > longest ? line.slice(0, longest) + "…" : line;
}

function isTelephoneUrl(url) {
    return /^tel:/i.test(url);
}

function telephoneNumber(url) {
    var number = url.slice(0, longest).replace(/^tel:(\/\/)?/i, "").replace(/[;?].*$/, "");
    try {
        number = decodeURIComponent(number);
    } catch (malformed) {
        // Then it is shown as it was written.
    }
    return clean(number.replace(/[-.() ]/g, ""));
}

// The plain asterisk hangs too high beside digits.
function display(number) {
    return number.replace(/\*/g, "\u2217");
}

function duration(milliseconds) {
    var seconds = Math.max(0, Math.floor(milliseconds / 1000));
    var hours = Math.floor(seconds / 3600);
    var rest = twoDigits(Math.floor(seconds / 60) % 60) + ":" + twoDigits(seconds % 60);
    return hours > 0 ? hours + ":" + rest : rest;
}

function twoDigits(number) {
    return (number < 10 ? "0" : "") + number;
}
