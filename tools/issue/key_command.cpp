#include "base/write_file.hpp"
#include "commands.hpp"
#include "issue/private_key.hpp"

namespace tool {

namespace {

struct Options {
    std::string type = "rsa-2048";
    std::string path;
    PasswordSource password;
    bool encrypted = false;
    bool force = false;
};

bool run(const Options &options) {
    constexpr mode_t kOwnerAlone = 0600;
    std::optional<Secret> password = given_password(options.password);
    if (!password && options.encrypted) {
        password = asked_password("New password of " + options.path + ": ", Ask::twice);
    }
    const EvpKey key = generate_key(options.type);
    const Secret pem = pem_of_key(*key, password ? &*password : nullptr);
    write_file(options.path, pem.view(), kOwnerAlone,
               options.force ? Existing::replaced : Existing::kept);
    return true;
}

}  // namespace

void add_key_command(Arguments &app) {
    Arguments group = app.add_commands("key", "Make keys.");
    Arguments command =
        group.add_command("new", "Make a private key: PKCS#8 in PEM, for its owner's eyes alone.");
    const auto options = std::make_shared<Options>();
    command
        .add_option("--type", options->type, "rsa-2048, rsa-3072, rsa-4096, rsa-1024, p256 or sm2")
        .one_of({"rsa-2048", "rsa-3072", "rsa-4096", "rsa-1024", "p256", "sm2"})
        .shows_default();
    command.add_option("--out", options->path, "the file to be made, with mode 0600")
        .type_name("FILE")
        .required();
    command.add_flag("--force", options->force, "replace a file that is there");
    command.add_flag("--encrypt", options->encrypted,
                     "encrypt it with AES-256 under a password, asked for unless given below");
    add_password_options(command, options->password, "both encrypt without --encrypt too");
    command.footer("Example:\n  zacert key new --type sm2 --encrypt --out user.key");
    command.runs([options] { return run(*options); });
}

}  // namespace tool
