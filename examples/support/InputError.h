#pragma once

#include <stdexcept>

namespace Examples
{

/** Something that the user gave cannot be used. The text is one line for the user. */
class InputError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

} // namespace Examples
