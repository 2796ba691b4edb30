#pragma once

#include <QByteArray>
#include <QProcess>

// A real X server without a screen (Xvfb) on a display number that is free, for tests that
// need true key and wheel events. It ends with the object.
//
// Make one before QApplication and point the application at it with useForQt().
class XServer
{
public:
    ~XServer();

    // False when the server does not start.
    bool start();
    // Makes this server the one that Qt and the programs started from here connect to.
    void useForQt() const;

    // Runs a program of X with its arguments until it ends; true when it succeeds.
    static bool run(const QString &program, const QStringList &arguments);
    // Switches to one of the keyboard layouts that setxkbmap set, counted from 0. (The keys
    // that do so on a desk do nothing when xdotool presses them.)
    static bool switchLayout(int layout);

private:
    QProcess m_server;
    QByteArray m_display;
};
