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

function isReminderUrl(url) {
    return /^(remind|forget):/i.test(url);
}

function isForgetUrl(url) {
    return /^forget:/i.test(url);
}

// In how many seconds a URL asks to be reminded; -1 if it leaves that open.
function reminderSeconds(url) {
    var found = /\?seconds=(\d{1,9})$/i.exec(url.slice(0, longest));
    return found !== null ? Number(found[1]) : -1;
}

function urlNumber(url) {
    var number = url.slice(0, longest).replace(/^[a-z]+:(\/\/)?/i, "").replace(/[;?].*$/, "");
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

function secondsLater(now, seconds) {
    return new Date(now.getTime() + seconds * 1000);
}

function onDay(now, daysLater, hour) {
    return new Date(now.getFullYear(), now.getMonth(), now.getDate() + daysLater, hour);
}

function always() {
    return true;
}

var reminderChoices = [
    {
        text: "In 1 minute",
        offered: always,
        when: function(now) { return secondsLater(now, 60); }
    },
    {
        text: "In 30 minutes",
        offered: always,
        when: function(now) { return secondsLater(now, 30 * 60); }
    },
    {
        text: "In 1 hour",
        offered: always,
        when: function(now) { return secondsLater(now, 60 * 60); }
    },
    {
        text: "This evening",
        offered: function(now) { return now.getHours() < 17; },
        when: function(now) { return onDay(now, 0, 18); }
    },
    {
        text: "Tomorrow morning",
        offered: always,
        when: function(now) { return onDay(now, 1, 9); }
    }
];

// When something is due, as short as it can be said now.
function due(when, now) {
    if (isNaN(when.getTime()))
        return "";
    var time = twoDigits(when.getHours()) + ":" + twoDigits(when.getMinutes());
    for (var days = 0; days < 2; ++days) {
        if (onDay(when, 0, 0).getTime() === onDay(now, days, 0).getTime())
            return (days === 0 ? "today " : "tomorrow ") + time;
    }
    var year = when.getFullYear() === now.getFullYear() ? "" : " yyyy";
    return Qt.formatDate(when, "ddd d MMM" + year) + " " + time;
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
