// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

.pragma library

/// Whether the user may answer a call.
function rings(call) {
    return call.callState === "incoming" || call.callState === "waiting";
}

function idOf(call) {
    return call !== null ? call.callId : -1;
}

// The states of a call, the one that the user looks at first.
var order = ["dialing", "alerting", "active", "held"];

/// Sorts the calls into what the screens show. "refused" has the calls that the user did not take
/// as its keys, and "pending" is a call that the stack does not know yet, or null.
function sorted(calls, refused, pending) {
    var ringing = calls.filter(function(call) { return rings(call) && !refused[call.callId]; });
    var rest = calls.filter(function(call) { return order.indexOf(call.callState) >= 0; });
    var main = pending;
    for (var i = 0; main === null && i < order.length; ++i)
        main = rest.filter(function(call) { return call.callState === order[i]; })[0] || null;

    function isMember(call) {
        return main.conference && call.conference && call.modem === main.modem;
    }

    rest = rest.filter(function(call) { return call !== main; });
    return {ringing: ringing[0] || null,
            main: main,
            members: rest.filter(isMember),
            others: rest.filter(function(call) { return !isMember(call); })};
}

function stateWord(call) {
    return call.callState === "active" ? "ongoing" : call.callState === "held" ? "held" : "calling";
}

function described(call) {
    return (stateWord(call) + " " + call.number).trim();
}

/// Describes the calls of the call screen for the log.
function summary(view) {
    var main = view.main;
    var text = described(main);
    if (view.members.length > 0) {
        var all = [main].concat(view.members).map(function(call) { return call.number; });
        text = (main.callState === "held" ? "held conference " : "conference ") + all.join(", ");
    }
    text += (view.reminded ? " (reminder)" : "") + (main.chosenModem ? " via " + main.chosenModem : "");
    return [text].concat(view.others.map(described)).join("; ");
}
