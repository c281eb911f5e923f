// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

.pragma library

var longest = 500;

// Shortens a text from the bus, which may have any length, and puts it on one line.
function clean(text) {
    var head = text.slice(0, longest + 1);
    var line = head.replace(/[\x00-\x1f\x7f-\x9f\u2028-\u202e\u2066-\u2069]+/g, " ").trim();
    return line.length > longest ? line.slice(0, longest) + "…" : line;
}

function isRightToLeft() {
    return Qt.locale().textDirection === Qt.RightToLeft;
}

// Keeps a number together in a sentence that is written from right to left.
function isolated(text) {
    return isRightToLeft() ? "\u2068" + text + "\u2069" : text;
}

// The other side of a call: the name that the network gives, in whatever direction it is written, or
// the number.
function caller(call) {
    if (call !== null && call.name)
        return "\u2068" + call.name + "\u2069";
    return call !== null && call.number !== "" ? display(call.number) : qsTr("Private number");
}

// Removes what people write between the digits of a number.
function plainNumber(text) {
    return text.replace(/[-.()\/ ]/g, "");
}

// Whether the network is to be asked, as by *100#.
function isRequest(number) {
    return /^[*#].*#$/.test(number);
}

// Replaces the plain asterisk, which sits too high beside digits.
function display(number) {
    return number.replace(/\*/g, "\u2217");
}

function secondsLater(now, seconds) {
    return new Date(now.getTime() + seconds * 1000);
}

function onDay(now, daysLater, hour) {
    Date.timeZoneUpdated(); // The engine does not notice a new zone by itself.
    return new Date(now.getFullYear(), now.getMonth(), now.getDate() + daysLater, hour);
}

function always() {
    return true;
}

var reminderChoices = [
    {
        text: qsTr("In 1 minute"),
        offered: always,
        when: function(now) { return secondsLater(now, 60); }
    },
    {
        text: qsTr("In 30 minutes"),
        offered: always,
        when: function(now) { return secondsLater(now, 30 * 60); }
    },
    {
        text: qsTr("In 1 hour"),
        offered: always,
        when: function(now) { return secondsLater(now, 60 * 60); }
    },
    {
        text: qsTr("This evening"),
        offered: function(now) { return now.getHours() < 17; },
        when: function(now) { return onDay(now, 0, 18); }
    },
    {
        text: qsTr("Tomorrow morning"),
        offered: always,
        when: function(now) { return onDay(now, 1, 9); }
    }
];

// The time when something is due, in the shortest form that is clear now.
function due(when, now) {
    if (isNaN(when.getTime()))
        return "";
    var time = Qt.formatTime(when, "hh:mm");
    for (var days = 0; days < 2; ++days) {
        if (onDay(when, 0, 0).getTime() === onDay(now, days, 0).getTime())
            return (days === 0 ? qsTr("today %1") : qsTr("tomorrow %1")).arg(time);
    }
    var isThisYear = when.getFullYear() === now.getFullYear();
    var format = isThisYear ? qsTr("ddd d MMM", "date") : qsTr("ddd d MMM yyyy", "date");
    return Qt.formatDate(when, format) + " " + time;
}

// The time left until something is due.
function left(when, now) {
    var minutes = Math.ceil((when.getTime() - now.getTime()) / 60000);
    if (!(minutes > 0))
        return qsTr("now");
    if (minutes < 60)
        return qsTr("in %n min", "", minutes);
    if (minutes < 48 * 60)
        return qsTr("in %1 h %2 min").arg(Math.floor(minutes / 60)).arg(twoDigits(minutes % 60));
    return qsTr("in %n days", "", Math.floor(minutes / (24 * 60)));
}

// Whether two numbers share a reminder: they do if their ends are the same.
function shareReminder(one, other) {
    var ends = [one, other].map(function(number) { return number.replace(/\D/g, "").slice(-7); });
    return one === other || (ends[0] !== "" && ends[0] === ends[1]);
}

// Whether every phone lets the number through, with or without a SIM.
function isEmergency(number) {
    return ["000", "08", "110", "112", "118", "119", "911", "999"].indexOf(number) >= 0;
}

function duration(milliseconds) {
    if (isNaN(milliseconds))
        return "";
    var seconds = Math.max(0, Math.floor(milliseconds / 1000));
    var hours = Math.floor(seconds / 3600);
    var rest = twoDigits(Math.floor(seconds / 60) % 60) + ":" + twoDigits(seconds % 60);
    return hours > 0 ? hours + ":" + rest : rest;
}

function twoDigits(number) {
    return (number < 10 ? "0" : "") + number;
}
