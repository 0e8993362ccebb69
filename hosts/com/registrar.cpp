#include "hosts/com/registrar.h"

#include <optional>
#include <stdexcept>
#include <vector>

namespace norvane::com {
namespace {

struct Value {
  DWORD type = REG_SZ;
  std::wstring text;
  DWORD number = 0;
};

struct Key {
  std::wstring name;
  bool no_remove = false;
  bool force_remove = false;
  std::optional<Value> value;
  std::vector<std::pair<std::wstring, Value>> values;
  std::vector<Key> keys;
};

struct Root {
  const wchar_t* name;
  const wchar_t* long_name;
  HKEY key;
};
const Root roots[] = {{L"HKCR", L"HKEY_CLASSES_ROOT", HKEY_CLASSES_ROOT},
                      {L"HKCU", L"HKEY_CURRENT_USER", HKEY_CURRENT_USER},
                      {L"HKLM", L"HKEY_LOCAL_MACHINE", HKEY_LOCAL_MACHINE}};

struct ScriptError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

using Replacements = std::map<std::wstring, std::wstring, std::less<>>;

class Parser {
 public:
  Parser(std::wstring_view text, const Replacements& replacements) : rest_(text), replacements_(replacements) {
    Next();
  }

  // Root { keys } ..., to the end of the script.
  void Run(void (*use)(HKEY root, const Key& keys, bool install, HRESULT& result), bool install, HRESULT& result) {
    std::vector<std::pair<HKEY, Key>> blocks;
    while (!end_) {
      HKEY root = RootNamed(word_);
      Next();
      Key keys;
      Block(keys, 0);
      blocks.emplace_back(root, std::move(keys));
    }
    for (const auto& [root, keys] : blocks) use(root, keys, install, result);
  }

 private:
  static constexpr int deepest = 32;

  static HKEY RootNamed(const std::wstring& name) {
    for (const Root& root : roots)
      if (name == root.name || name == root.long_name) return root.key;
    throw ScriptError("unknown root");
  }

  static bool IsBlank(wchar_t unit) { return unit == L' ' || unit == L'\t' || unit == L'\r' || unit == L'\n'; }

  // The next word: up to a blank, or within single quotes, where a doubled quote is a quote.
  void Next() {
    word_.clear();
    quoted_ = false;
    while (!rest_.empty() && IsBlank(rest_.front())) rest_.remove_prefix(1);
    end_ = rest_.empty();
    if (end_) return;
    if (rest_.front() != L'\'') {
      while (!rest_.empty() && !IsBlank(rest_.front())) Take();
    } else {
      quoted_ = true;
      rest_.remove_prefix(1);
      for (;; Take()) {
        if (rest_.empty()) throw ScriptError("a quote is not closed");
        if (rest_.front() != L'\'') continue;
        rest_.remove_prefix(1);
        if (rest_.empty() || rest_.front() != L'\'') break;
      }
    }
    word_ = Replaced(word_);
  }
  void Take() {
    word_ += rest_.front();
    rest_.remove_prefix(1);
  }

  std::wstring Replaced(const std::wstring& text) const {
    std::wstring result;
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (text[i] != L'%') {
        result += text[i];
        continue;
      }
      const std::size_t close = text.find(L'%', i + 1);
      if (close == text.npos) throw ScriptError("a percent sign is not closed");
      const std::wstring name = text.substr(i + 1, close - i - 1);
      i = close;
      if (name.empty()) {
        result += L'%';
        continue;
      }
      const auto found = replacements_.find(name);
      if (found == replacements_.end()) throw ScriptError("nothing stands for a name in percent signs");
      result += found->second;
    }
    return result;
  }

  bool Is(const wchar_t* symbol) const { return !end_ && !quoted_ && word_ == symbol; }
  bool Skip(const wchar_t* symbol) {
    if (!Is(symbol)) return false;
    Next();
    return true;
  }
  std::wstring Name() {
    if (end_ || word_.empty() || Is(L"{") || Is(L"}") || Is(L"=")) throw ScriptError("a name is missing");
    std::wstring name = word_;
    Next();
    return name;
  }

  Value ReadValue() {
    Value value;
    if (Skip(L"d")) {
      value.type = REG_DWORD;
      value.number = std::stoul(word_);
    } else if (Skip(L"s") && !end_) {
      value.text = word_;
    } else {
      throw ScriptError("a value is missing or of an unknown kind");
    }
    Next();
    return value;
  }

  // { keys and values }. A brace that does not stand alone begins a name: {04BB...}.
  void Block(Key& parent, int depth) {
    if (depth > deepest || !Skip(L"{")) throw ScriptError("a block is missing");
    while (!Skip(L"}")) {
      if (Skip(L"val")) {
        std::wstring name = Name();
        if (!Skip(L"=")) throw ScriptError("a named value is missing");
        parent.values.emplace_back(std::move(name), ReadValue());
        continue;
      }
      Key key;
      key.no_remove = Skip(L"NoRemove");
      key.force_remove = Skip(L"ForceRemove");
      key.name = Name();
      if (Skip(L"=")) key.value = ReadValue();
      if (Is(L"{")) Block(key, depth + 1);
      parent.keys.push_back(std::move(key));
    }
  }

  std::wstring_view rest_;
  const Replacements& replacements_;
  std::wstring word_;
  bool quoted_ = false;
  bool end_ = false;
};

void note(HRESULT& result, LSTATUS error) {
  if (error != ERROR_SUCCESS && SUCCEEDED(result)) result = HRESULT_FROM_WIN32(static_cast<DWORD>(error));
}

void set(HKEY key, const wchar_t* name, const Value& value, HRESULT& result) {
  const auto* bytes = value.type == REG_SZ ? reinterpret_cast<const BYTE*>(value.text.c_str())
                                           : reinterpret_cast<const BYTE*>(&value.number);
  const std::size_t size = value.type == REG_SZ ? (value.text.size() + 1) * sizeof(wchar_t) : sizeof value.number;
  note(result, RegSetValueExW(key, name, 0, value.type, bytes, static_cast<DWORD>(size)));
}

void install_into(HKEY parent, const Key& block, HRESULT& result) {
  for (const Key& key : block.keys) {
    if (key.force_remove) RegDeleteTreeW(parent, key.name.c_str());
    HKEY made = nullptr;
    const LSTATUS error =
        RegCreateKeyExW(parent, key.name.c_str(), 0, nullptr, 0, KEY_READ | KEY_WRITE, nullptr, &made, nullptr);
    note(result, error);
    if (error != ERROR_SUCCESS) continue;
    if (key.value) set(made, nullptr, *key.value, result);
    for (const auto& [name, value] : key.values) set(made, name.c_str(), value, result);
    install_into(made, key, result);
    RegCloseKey(made);
  }
}

void remove_from(HKEY parent, const Key& block, HRESULT& result) {
  for (const Key& key : block.keys) {
    LSTATUS error = ERROR_SUCCESS;
    if (!key.no_remove) {
      error = RegDeleteTreeW(parent, key.name.c_str());
    } else if (HKEY kept = nullptr;
               (error = RegOpenKeyExW(parent, key.name.c_str(), 0, KEY_READ | KEY_WRITE, &kept)) == ERROR_SUCCESS) {
      remove_from(kept, key, result);
      RegCloseKey(kept);
    }
    if (error != ERROR_FILE_NOT_FOUND) note(result, error);
  }
}

void apply(HKEY root, const Key& keys, bool install, HRESULT& result) {
  install ? install_into(root, keys, result) : remove_from(root, keys, result);
}

}  // namespace

HRESULT Registrar::Run(std::wstring_view script, bool install) const noexcept {
  HRESULT result = S_OK;
  try {
    Parser(script, replacements_).Run(apply, install, result);
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_FAIL;
  }
  return result;
}

}  // namespace norvane::com
