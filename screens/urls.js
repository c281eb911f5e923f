// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

.pragma library
.import "text.js" as Words

// A URL may have any length. Only this many characters are read.
var longest = 2000;

function decoded(text) {
    try {
        return decodeURIComponent(text);
    } catch (malformed) {
        return text; // Return the undecoded text.
    }
}

/// The scheme in lower case; empty if there is none.
function scheme(url) {
    var found = /^([a-z][a-z0-9+.-]*):/i.exec(url.slice(0, longest));
    return found !== null ? found[1].toLowerCase() : "";
}

/// The part between the scheme and the parameters.
function path(url) {
    var rest = url.slice(0, longest).replace(/^[a-z][a-z0-9+.-]*:(\/\/)?/i, "");
    return Words.clean(decoded(rest.replace(/[;?].*$/, "")));
}

function number(url) {
    return Words.plainNumber(path(url));
}

/// The value of a parameter, "?name=value&..."; undefined if it is missing.
function parameter(url, name) {
    var query = url.slice(0, longest).replace(/^[^?]*\??/, "").split("&");
    for (var i = 0; i < query.length; ++i) {
        if (query[i].indexOf(name + "=") === 0)
            return Words.clean(decoded(query[i].slice(name.length + 1)));
    }
    return undefined;
}

/// The value of a parameter that is a number from 0; -1 if it is not such a number.
function count(url, name) {
    var value = parameter(url, name);
    return /^\d{1,9}$/.test(value) ? Number(value) : -1;
}
