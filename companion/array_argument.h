#pragma once

#include <windows.h>

#include <oaidl.h>

#include <cstdint>
#include <vector>

namespace av::companion {

// What a late-bound host passes as an array: a safe array of one dimension, of any type of number or of VARIANTs that
// hold numbers (VBScript), by value or by reference; or an object with `length` and elements "0", "1", ... (JScript).
// An element that is Empty counts as 0; texts, dates, booleans, objects and Null are no numbers. Both functions throw a
// Failure for whatever else they get, and std::bad_alloc.

/// The numbers of an array.
std::vector<double> numbersOf(const VARIANT& argument);

/// The bytes of an array, or the numbers of one if they are whole and 0 to 255.
std::vector<std::uint8_t> bytesOf(const VARIANT& argument);

}  // namespace av::companion
