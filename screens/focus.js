// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

.pragma library

// Items that the keyboard can reach have a property "tabStop" that is true.

function isWithin(item, scope) {
    for (var at = item; at; at = at.parent) {
        if (at === scope)
            return true;
    }
    return false;
}

function stops(item, found) {
    if (!item.visible || !item.enabled)
        return found;
    if (item.tabStop === true)
        found.push(item);
    for (var i = 0; i < item.children.length; ++i)
        stops(item.children[i], found);
    return found;
}

/// Returns the stop after the focused one, or before it. The first one follows the last.
function following(scope, focused, forward) {
    var all = stops(scope, []);
    var at = all.indexOf(focused);
    if (at < 0)
        return forward ? all[0] : all[all.length - 1];
    return all[(at + (forward ? 1 : -1) + all.length) % all.length];
}

function middle(item, scope) {
    return item.mapToItem(scope, item.width / 2, item.height / 2);
}

/// Returns the nearest stop from the focused one in the direction (x, y); undefined at the edge.
function beside(scope, focused, x, y) {
    var all = stops(scope, []);
    if (all.indexOf(focused) < 0)
        return all[0];
    var here = middle(focused, scope);
    var best;
    var least = Infinity;
    for (var i = 0; i < all.length; ++i) {
        var there = middle(all[i], scope);
        var along = (there.x - here.x) * x + (there.y - here.y) * y;
        var across = Math.abs((there.x - here.x) * y) + Math.abs((there.y - here.y) * x);
        var distance = along + 2 * across;
        // An item that lies more to the side than ahead belongs to another key.
        if (along > 1 && across < 3 * along && distance < least) {
            least = distance;
            best = all[i];
        }
    }
    return best;
}
