#include "ole/activation_context.h"

#include "ole/module_instance.h"

namespace av::ole {
namespace {
// ISOLATIONAWARE_MANIFEST_RESOURCE_ID, spelled out because the header's form is a narrow string cast.
constexpr WORD manifestResourceId = 2;
}  // namespace

OwnActivationContext::OwnActivationContext() noexcept {
  ACTCTXW request{};
  request.cbSize = sizeof request;
  request.dwFlags = ACTCTX_FLAG_RESOURCE_NAME_VALID | ACTCTX_FLAG_HMODULE_VALID;
  request.lpResourceName = MAKEINTRESOURCEW(manifestResourceId);
  request.hModule = moduleInstance();
  m_context = CreateActCtxW(&request);
  if (m_context == INVALID_HANDLE_VALUE) return;
  if (!ActivateActCtx(m_context, &m_cookie)) m_cookie = 0;
}

OwnActivationContext::~OwnActivationContext() {
  if (m_cookie != 0) DeactivateActCtx(0, m_cookie);
  if (m_context != INVALID_HANDLE_VALUE) ReleaseActCtx(m_context);
}

}  // namespace av::ole
