#pragma once

namespace Formkit {

// Registers what the library offers to Qt's meta-type system. One object of it is made when
// the library is loaded.
class Main
{
public:
    Main();
};

} // namespace Formkit
