// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "urls.js" as Urls

/// Turns the URLs that the screens are asked to open into requests. A single URL with one of the
/// schemes below is such a request. All other URLs are pages to open.
QtObject {
    id: requests

    /// "tel:NUMBER"
    signal telephone(string number)
    /// "remind:NUMBER?seconds=N"; the seconds are -1 if the URL does not give them.
    signal remind(string number, int seconds)
    /// "forget:NUMBER"
    signal forget(string number)
    /// "reminders:"
    signal reminders()
    /// "replies:send?index=N": decline the incoming call with a reply; -1 without an index.
    signal reply(int index)
    /// "replies:COMMAND?text=TEXT&index=N"; the command may be empty.
    signal replies(string command, string text, int index)
    signal pages(var urls)

    readonly property var handlers: ({
        "tel": function(url) { requests.telephone(Urls.number(url)); },
        "remind": function(url) { requests.remind(Urls.number(url), Urls.count(url, "seconds")); },
        "forget": function(url) { requests.forget(Urls.number(url)); },
        "reminders": function() { requests.reminders(); },
        "replies": function(url) {
            var command = Urls.path(url);
            var index = Urls.count(url, "index");
            if (command === "send")
                requests.reply(index);
            else
                requests.replies(command, Urls.parameter(url, "text") || "", index);
        }
    })

    function open(urls) {
        var scheme = urls.length === 1 ? Urls.scheme(urls[0]) : "";
        if (Object.prototype.hasOwnProperty.call(handlers, scheme))
            handlers[scheme](urls[0]);
        else
            pages(urls);
    }
}
