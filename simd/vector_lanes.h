#pragma once

#include <cstddef>
#include <utility>

namespace av {

// Vectors of doubles for kernels: the compilers' own vector types, whose operators work lane by lane. Everything here is
// told apart by the number of lanes and always inlined, so that code for one kind of processor never stands in for
// another's.

template <int lanes>
struct VectorOf {
  using type [[gnu::vector_size(lanes * sizeof(double))]] = double;
};

template <int lanes>
using Vector = typename VectorOf<lanes>::type;

#define AV_ALWAYS_INLINE [[gnu::always_inline]] inline
#define AV_INLINED __attribute__((always_inline))  // of a lambda

template <int lanes>
AV_ALWAYS_INLINE Vector<lanes> load(const double* from) noexcept {
  Vector<lanes> values;
  __builtin_memcpy(&values, from, sizeof values);
  return values;
}

template <int lanes>
AV_ALWAYS_INLINE void store(double* to, Vector<lanes> values) noexcept {
  __builtin_memcpy(to, &values, sizeof values);
}

template <int lanes>
using LaneNumbers = std::make_integer_sequence<int, lanes>;

template <class V, int... lane>
AV_ALWAYS_INLINE V reversed(V a, std::integer_sequence<int, lane...> /*lanes*/) noexcept {
  return __builtin_shufflevector(a, a, (static_cast<int>(sizeof...(lane)) - 1 - lane)...);
}

/// The lanes in the opposite order.
template <int lanes>
AV_ALWAYS_INLINE Vector<lanes> reversed(Vector<lanes> a) noexcept {
  return reversed(a, LaneNumbers<lanes>());
}

/// Exchanges the lanes of `a` whose number has the bit `distance` with those of `b`, `distance` lanes lower.
template <int distance, class V, int... lane>
AV_ALWAYS_INLINE void exchange(V& a, V& b, std::integer_sequence<int, lane...> /*lanes*/) noexcept {
  constexpr int lanes = sizeof...(lane);
  const V first = __builtin_shufflevector(a, b, ((lane & distance) ? lanes + lane - distance : lane)...);
  b = __builtin_shufflevector(a, b, ((lane & distance) ? lanes + lane : lane + distance)...);
  a = first;
}

template <class Body, int... n>
AV_ALWAYS_INLINE void unrolled(Body body, std::integer_sequence<int, n...> /*numbers*/) noexcept {
  (body.template operator()<n>(), ...);
}

/// Calls `body` with the template arguments 0 to `count` − 1: arrays that it indexes by them stay in registers.
template <int count, class Body>
AV_ALWAYS_INLINE void unrolled(Body body) noexcept {
  unrolled(body, std::make_integer_sequence<int, count>());
}

/// Makes the lanes of `lanes` vectors vectors of their own.
template <int lanes, int distance = 1>
AV_ALWAYS_INLINE void transpose(Vector<lanes>* rows) noexcept {
  if constexpr (distance < lanes) {
    unrolled<lanes>([&]<int row>() AV_INLINED {
      if constexpr (!(row & distance)) exchange<distance>(rows[row], rows[row + distance], LaneNumbers<lanes>());
    });
    transpose<lanes, 2 * distance>(rows);
  }
}

}  // namespace av
