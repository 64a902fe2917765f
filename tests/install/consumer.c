/* The least that a host does with an installed library, in plain C. */
#include <kesbase.h>
#include <qpx/qpx.h>
#include <stdio.h>

int main(void) {
  void* block = MMemAlloc(0, 16);
  if (!block) return 1;
  MMemFree(0, block);

  QPXEffectInfo first;
  const int32_t count = QPX_GetEffectCount();
  if (count <= 0 || QPX_GetEffectInfo(0, &first) != QPX_OK) return 1;
  printf("%d effects\n", (int)count);
  return 0;
}
