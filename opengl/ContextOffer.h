// What the current context offers, by which the loading rule decides a GL name.
#pragma once

#include "opengl/GlRegistry.h"

namespace dglOpenGL::detail {

// With no context current: the GL 1.0 and 1.1 commands. With one: the commands of the versions
// up to the context's (less what its core profile removed) and of the extensions it lists.
bool ContextOffers(const registry::TGLCommand& command);

// A context was deleted; a new one may come back at the same address.
void ForgetContextOffer();

}  // namespace dglOpenGL::detail
