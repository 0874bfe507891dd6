#pragma once

#include "ole/object.h"

#include <cstddef>
#include <new>
#include <utility>
#include <vector>

namespace av::ole {

/// A COM enumerator over items that are fixed when it is made: what happens to their source later does not show.
///
/// `Traits` names `Interface`, `Item` (what Next hands out), `Held` (what the enumerator keeps; copyable) and
/// `static HRESULT copy(const Held&, Item*)`, which makes the caller's own copy, and `static void release(Item*)`.
/// [control thread]
template <class Traits>
class Enumerator final : public Object, public Delegating<typename Traits::Interface> {
 public:
  using Interface = typename Traits::Interface;
  using Item = typename Traits::Item;
  using Items = std::vector<typename Traits::Held>;

  static HRESULT create(Items items, std::size_t position, Interface** enumerator) {
    try {
      *enumerator = new Enumerator(std::move(items), position);
      return S_OK;
    } catch (const std::bad_alloc&) {
      *enumerator = nullptr;
      return E_OUTOFMEMORY;
    }
  }

  STDMETHODIMP Next(ULONG count, Item* items, ULONG* fetched) override {
    if (fetched) *fetched = 0;
    if (!items || (!fetched && count != 1)) return E_POINTER;
    ULONG given = 0;
    for (; given < count && m_position < m_items.size(); ++given) {
      const HRESULT copied = Traits::copy(m_items[m_position], &items[given]);
      if (FAILED(copied)) {
        while (given > 0) {
          Traits::release(&items[--given]);
          --m_position;
        }
        return copied;
      }
      ++m_position;
    }
    if (fetched) *fetched = given;
    return given == count ? S_OK : S_FALSE;
  }

  STDMETHODIMP Skip(ULONG count) override {
    const std::size_t left = m_items.size() - m_position;
    m_position += count < left ? count : left;
    return count <= left ? S_OK : S_FALSE;
  }

  STDMETHODIMP Reset() override {
    m_position = 0;
    return S_OK;
  }

  STDMETHODIMP Clone(Interface** enumerator) override {
    if (!enumerator) return E_POINTER;
    try {
      return create(m_items, m_position, enumerator);
    } catch (const std::bad_alloc&) {
      *enumerator = nullptr;
      return E_OUTOFMEMORY;
    }
  }

 private:
  Enumerator(Items items, std::size_t position)
      : Object(nullptr),
        Delegating<Interface>(static_cast<Object&>(*this)),
        m_items(std::move(items)),
        m_position(position) {}

  void* findInterface(REFIID iid) noexcept override {
    return IsEqualIID(iid, __uuidof(Interface)) ? static_cast<Interface*>(this) : nullptr;
  }

  const Items m_items;
  std::size_t m_position;
};

}  // namespace av::ole
