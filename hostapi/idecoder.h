// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QtPlugin>

/// Marks the plug-in that announces sessions (in a terminal, the decoder of its market data). It
/// has no functions: the object that implements it declares a signal aNewSessions() and emits it
/// when the sessions that are open to trading have changed. The security list connects to the
/// signal by its name.
class IDecoder
{
public:
    virtual ~IDecoder() = default;
};

/// The name by which Qt tells the interface from others.
#define IDecoder_iid "org.formkit.Plugin.IDecoder/1.0"
Q_DECLARE_INTERFACE(IDecoder, IDecoder_iid)
