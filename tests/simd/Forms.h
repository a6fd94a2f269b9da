// The forms of a kernel that this processor can run.
#pragma once

#include <vector>

#include "varnik/simd/Cpu.h"

template <class Function>
struct Form {
  const char* name;
  Function* run;
};

/// VARNIK_FORMS(name): the scalar form of a kernel, the AVX2 form where the processor has it, and the chooser.
#if VARNIK_HAVE_AVX2
#define VARNIK_FORMS(kernel) formsOf(vk_simd::kernel, vk_simd::kernel##Scalar, vk_simd::kernel##Avx2)
#else
#define VARNIK_FORMS(kernel) formsOf(vk_simd::kernel, vk_simd::kernel##Scalar, vk_simd::kernel##Scalar)
#endif

/// VARNIK_FORMS_512(name): these and the AVX-512 form.
#if VARNIK_HAVE_AVX512
#define VARNIK_FORMS_512(kernel) with512(VARNIK_FORMS(kernel), vk_simd::kernel##Avx512)
#else
#define VARNIK_FORMS_512(kernel) VARNIK_FORMS(kernel)
#endif

template <class Function>
std::vector<Form<Function>> with512(std::vector<Form<Function>> forms, Function& avx512) {
  if (vk_simd::hasAvx512()) forms.push_back({"avx512", &avx512});
  return forms;
}

template <class Function>
std::vector<Form<Function>> formsOf(Function& chosen, Function& scalar, Function& avx2) {
  std::vector<Form<Function>> forms = {{"scalar", &scalar}, {"chosen", &chosen}};
  if (vk_simd::hasAvx2()) forms.push_back({"avx2", &avx2});
  return forms;
}
