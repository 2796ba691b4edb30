// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

#include <QHostAddress>
#include <QList>
#include <QString>

// Questions to the desktop and to the machine. They throw nothing and show no message box: a
// failure gives an empty answer, or a line in the log.

/// The ids of the running processes whose name matches, in the order in which `pgrep` lists them;
/// empty if there are none, and on any failure.
/// - pgrep gets the name as its only argument and takes it as a regular expression ("sleep" finds
///   "oversleep" too, "^sleep$" does not) or, if it begins with '-', as an option ("-uroot"): let
///   no user choose it freely. Linux keeps only the first 15 characters of a name, and a longer one
///   finds nothing.
/// - It blocks for up to four seconds: two until pgrep runs, two more until it has ended. A pgrep
///   that takes longer is killed, without waiting for its end.
/// - Each line of pgrep that is no id, and each time-out, gives a debug line in the category
///   "QGuiLog".
/// - Any thread may call this.
FORMKIT_EXPORT QList<long> processIds(const QString &name);

/// Brings the desktop's file browser to the front with the file selected. If no file browser
/// answers, opens the folder of the file. A relative path is taken from the current folder; an
/// empty path does nothing. Call it on the thread of the application object.
///
/// - On macOS it asks the Finder, through `osascript`. A path with double quotes or backslashes
///   does not find its file.
/// - Elsewhere it asks the file manager over the session bus (org.freedesktop.FileManager1). The
///   path may have any characters. The call returns at once, and the event loop does the rest: it
///   opens the folder if the bus does not answer within a second, or the file manager, which may
///   have to be started, within five more.
FORMKIT_EXPORT void shellShowFile(const QString &path);

/// The IPv4 and IPv6 addresses of the machine's network interfaces (with `upOnly` of those that are
/// up), loopback included, in the system's order. An address of two interfaces is listed twice, and
/// a link-local one does not name its interface. Empty if the system gives no list.
FORMKIT_EXPORT QList<QHostAddress> localhostAddresses(bool upOnly);
