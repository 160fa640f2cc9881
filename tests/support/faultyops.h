// The one fault-injecting file-operations fake: the real file system, except
// that the chosen operation fails at its n-th call (every call from then on),
// as a full disk, a read-only mount or a busy file would. A failed Write lets
// half of its bytes land first, as a full disk does.
#pragma once

#include <cerrno>
#include <memory>
#include <string>
#include <vector>

#include "core/fileops.h"

namespace ct::test {

enum class Fault { None, Create, Write, Sync, Close, Rename, Copy, Remove };

class FaultyOps : public FileOps {
public:
    explicit FaultyOps(Fault f = Fault::None, int atCall = 1) : fault(f), at(atCall) {}

    Fault fault;
    int at;                        // the first call that fails, counted from 1
    std::vector<std::string> log;  // "create PATH", "rename FROM TO", ...
    bool sameFileSystem = true;

    std::unique_ptr<OutFile> Create(const std::string& p, std::string* e) override {
        log.push_back("create " + p);
        if (Fails(Fault::Create, e)) return nullptr;
        auto real = SystemFileOps().Create(p, e);
        if (!real) return nullptr;
        return std::make_unique<File>(*this, std::move(real));
    }
    bool Rename(const std::string& a, const std::string& b, std::string* e) override {
        log.push_back("rename " + a + " " + b);
        return !Fails(Fault::Rename, e) && SystemFileOps().Rename(a, b, e);
    }
    bool Copy(const std::string& a, const std::string& b, std::string* e) override {
        log.push_back("copy " + a + " " + b);
        return !Fails(Fault::Copy, e) && SystemFileOps().Copy(a, b, e);
    }
    bool Remove(const std::string& p, std::string* e) override {
        log.push_back("remove " + p);
        return !Fails(Fault::Remove, e) && SystemFileOps().Remove(p, e);
    }
    bool Exists(const std::string& p) override { return SystemFileOps().Exists(p); }
    bool SameFileSystem(const std::string& a, const std::string& b) override {
        return sameFileSystem && SystemFileOps().SameFileSystem(a, b);
    }

private:
    class File : public OutFile {
    public:
        File(FaultyOps& ops, std::unique_ptr<OutFile> real) : ops_(ops), real_(std::move(real)) {}
        bool Write(std::string_view bytes) override {
            if (ops_.Fails(Fault::Write, nullptr)) {
                real_->Write(bytes.substr(0, bytes.size() / 2));
                return false;
            }
            return real_->Write(bytes);
        }
        bool Sync() override { return !ops_.Fails(Fault::Sync, nullptr) && real_->Sync(); }
        bool Close() override {
            const bool ok = real_->Close();
            return !ops_.Fails(Fault::Close, nullptr) && ok;
        }

    private:
        FaultyOps& ops_;
        std::unique_ptr<OutFile> real_;
    };

    bool Fails(Fault op, std::string* e) {
        if (op != fault || ++calls_ < at) return false;
        if (e) *e = "Input/output error";
        errno = EIO;  // where the callers read the reason, as after a real call
        return true;
    }

    int calls_ = 0;
};

}  // namespace ct::test
