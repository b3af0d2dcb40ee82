// Functions that the modules of this process import, exchanged for others. Windows only.
#ifndef MOX_XMLAPI_TESTS_FAULTS_IMPORT_TABLE_SUPPORT_H
#define MOX_XMLAPI_TESTS_FAULTS_IMPORT_TABLE_SUPPORT_H

#if defined(_WIN32)

namespace faults {

// Whose imports are meant: this program's alone, or those of every module that imports the very same
// function.
enum class Modules { Program, All };

// The function that this program imports under a name; null if it imports none.
void* FindImport(const char* name);
// Replaces `original` by `replacement` permanently.
void StoreImports(Modules modules, const char* name, void* original, void* replacement);

// Has the modules call `replacement` in the place of the function of that name. `original` becomes the
// function that was there before any of them meets the replacement; null, and nothing is done, if this
// program does not import it.
template <class Function>
void ReplaceImports(Modules modules, const char* name, Function* replacement, Function*& original) {
    void* found = FindImport(name);
    original = reinterpret_cast<Function*>(found);
    if (found != nullptr) StoreImports(modules, name, found, reinterpret_cast<void*>(replacement));
}

}  // namespace faults

#endif

#endif
