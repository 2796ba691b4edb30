// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

#include <QHostAddress>
#include <QList>
#include <QString>

// What a program asks the desktop about the machine that it runs on. Nothing is thrown and no
// box is shown: what fails gives an empty answer or is said in the log.

/// The ids of the running processes whose name matches, in the order in which `pgrep` lists them;
/// empty when none does and on any failure. The name is passed as the one argument of pgrep, which
/// takes it as a regular expression ("sleep" finds "oversleep" too; "^sleep$" does not) or, when it
/// begins with '-', as an option ("-uroot"): let no user choose it freely. Linux knows the first 15
/// characters of a name only: a pattern beyond them finds nothing.
///
/// Blocks for up to four seconds: two until pgrep runs, two more until it has ended. One that has
/// not by then is killed, and left to end by itself. Each line of pgrep that is no id, and each
/// time-out, is said at the debug level of the category "QGuiLog". Any thread may call this.
FORMKIT_EXPORT QList<long> processIds(const QString &name);

/// Brings the desktop's file browser to the front with the file selected, or opens the folder that
/// holds the file when no file browser can be asked. A relative path is taken from the current
/// folder; an empty path does nothing. For the thread of the application object.
///
/// - On macOS the Finder is asked, through `osascript`; it is given the path as it stands, so one
///   with double quotes or backslashes does not find its file.
/// - Elsewhere the file manager is asked over the session bus (org.freedesktop.FileManager1), and
///   any character may stand in the path. The call returns at once, the rest rests on the event
///   loop: the folder is opened when the bus has not answered within a second, or the file manager
///   (which may have to be started) not within five more.
FORMKIT_EXPORT void shellShowFile(const QString &path);

/// The IPv4 and IPv6 addresses of the machine's network interfaces (with `upOnly` of those that are
/// up), loopback included, in the system's order; an address that two interfaces carry is there
/// twice, and a link-local one does not name its interface. Empty when the system gives no list.
FORMKIT_EXPORT QList<QHostAddress> localhostAddresses(bool upOnly);
