/* A program without a run-time library, linked as Microsoft's tools link: through norvane.lib. */
#include <norvane.h>

__declspec(dllimport) void ExitProcess(unsigned int code);

void start(void) {
  double mass, volume;
  const int refused = Norvane_AGA5_C(0, 22, 0.6, &mass, &volume) == NORVANE_NOT_RUN;
  ExitProcess(refused && norvane_version() != 0 ? 0 : 1);
}
