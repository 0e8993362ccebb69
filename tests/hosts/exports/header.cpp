// The public header serves C++ as well: it compiles alone, and its functions link as C.
#include <norvane.h>

int main() {
  double mass = 0.0, volume = 0.0;
  const bool refused = Norvane_AGA5_C(nullptr, 22, 0.6, &mass, &volume) == NORVANE_NOT_RUN;
  return refused && norvane_version() != nullptr ? 0 : 1;
}
