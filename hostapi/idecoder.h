// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QtPlugin>

/// A plug-in that decodes the host's market data. The object that implements it also declares
/// the signal aNewSessions(), by which it announces that the sessions open to trading have
/// changed; the security list connects to it by name.
class IDecoder
{
public:
    virtual ~IDecoder() = default;
};

/// The name by which Qt tells the interface from others.
#define IDecoder_iid "org.formkit.Plugin.IDecoder/1.0"
Q_DECLARE_INTERFACE(IDecoder, IDecoder_iid)
