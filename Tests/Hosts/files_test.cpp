// SPDX-License-Identifier: MIT
// Fluid files and databases that cannot be written, or that are replaced or broken while they are in use, and things of
// other kinds in their place. A loaded fluid must stay, the next load must take the thing that is there then, and
// nothing must wait.
#include "Tests/Hosts/hosts_support.h"
#include "Tests/Support/child_process.h"

#include <cerrno>
#include <grp.h>
#include <pwd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

namespace {

namespace fs = std::filesystem;
using support::ask;
using support::failed_open;
using support::fluid_folder;
using support::vapor_file;

/// The parameter file with another critical temperature [K].
std::string file_with_Tc(const std::string &Tc) {
    std::string text = vapor_file();
    text.replace(text.find("300.0"), 5, Tc);
    return text;
}

double Tc_of(const char *fluid) {
    return support::ask_info(fluid, "t_crit").value;
}

struct files : support::frame_test {
    files() { alarm(30); } // ends a test that waits for ever
    ~files() override { alarm(0); }
};

/// Puts something in the place of the file of the fluid "x" while that fluid is loaded, and asks for it. Then asks for
/// it again after another fluid.
template <class Replace>
void replaced_while_in_use(const fluid_folder &folder, Replace replace, const std::string &text, double Tc = 0) {
    const fs::path place = fs::path(folder.path()) / "x.osd";
    fs::remove_all(place);
    folder.add("x", file_with_Tc("311.0"));
    folder.add("other", file_with_Tc("322.0"));
    ASSERT_EQ(Tc_of("other"), 322.0);
    const auto before = ask("x", "td", 500, 2.0, "p");
    ASSERT_TRUE(before.ok()) << before.text;
    const long descriptors = support::open_descriptors();
    replace(place);
    EXPECT_EQ(ask("x", "td", 500, 2.0, "p").value, before.value) << "the loaded fluid stays";
    EXPECT_TRUE(ask("x", "td", 510, 2.0, "p").ok());
    EXPECT_EQ(Tc_of("x"), 311.0);
    ASSERT_TRUE(ask("other", "td", 500, 2.0, "p").ok());
    EXPECT_EQ(ask("x", "td", 500, 2.0, "t").text, text);
    if (text == "No errors") {
        EXPECT_EQ(Tc_of("x"), Tc);
    }
    EXPECT_EQ(support::open_descriptors(), descriptors);
    EXPECT_TRUE(ask("other", "td", 500, 2.0, "p").ok()) << "and the library goes on";
    fs::remove_all(place);
}

TEST_F(files, replaced_by_another_in_one_step) {
    const fluid_folder folder;
    replaced_while_in_use(
        folder,
        [&](const fs::path &place) {
            folder.write("new", file_with_Tc("333.0"));
            fs::rename(folder.path() + "/new", place);
        },
        "No errors", 333.0);
}

TEST_F(files, rewritten_in_place) {
    const fluid_folder folder;
    replaced_while_in_use(
        folder, [&](const fs::path &) { folder.add("x", file_with_Tc("344.0")); }, "No errors", 344.0);
}

TEST_F(files, truncated_in_place) {
    const fluid_folder folder;
    const std::string text = "Ostrel error: file x.osd, record ";
    replaced_while_in_use(
        folder, [](const fs::path &place) { fs::resize_file(place, 0); },
        text + "1: expected a heading, found the end of the file.");
    replaced_while_in_use(
        folder, [](const fs::path &place) { fs::resize_file(place, vapor_file().find("300.0") + 2); },
        text + "8: expected Pc (a real), found the end of the file.");
}

TEST_F(files, deleted) {
    const fluid_folder folder;
    replaced_while_in_use(
        folder, [](const fs::path &place) { fs::remove(place); }, failed_open(ENOENT));
}

TEST_F(files, directory_deleted) {
    const fluid_folder folder;
    folder.add("x", vapor_file());
    ASSERT_TRUE(ask("x", "td", 500, 2.0, "p").ok());
    fs::remove_all(folder.path());
    EXPECT_TRUE(ask("x", "td", 510, 2.0, "p").ok());
    EXPECT_EQ(ask("y", "td", 500, 2.0, "p").text, failed_open(ENOENT));
    std::int32_t count = -1;
    std::string names(std::size_t{500} * 256, ' ');
    ostrel_fluids(&count, names.data(), 256);
    EXPECT_EQ(count, 0);
}

template <class Make>
auto instead(Make make) {
    return [make](const fs::path &place) {
        fs::remove(place);
        make(place);
    };
}

TEST_F(files, things_that_are_no_files) {
    const fluid_folder folder;
    replaced_while_in_use(folder, instead([](const fs::path &place) { fs::create_directory(place); }),
                          "Ostrel error: file x.osd, record 1: expected a heading, found the end of the file.");
    replaced_while_in_use(folder, instead([](const fs::path &place) { ASSERT_EQ(mkfifo(place.c_str(), 0600), 0); }),
                          failed_open(ENXIO));
    replaced_while_in_use(folder, instead([](const fs::path &place) {
                              sockaddr_un address{};
                              address.sun_family = AF_UNIX;
                              place.string().copy(address.sun_path, sizeof address.sun_path - 1);
                              const int end = socket(AF_UNIX, SOCK_STREAM, 0);
                              ASSERT_EQ(bind(end, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
                              close(end);
                          }),
                          failed_open(ENXIO));
    for (const char *device : {"/dev/zero", "/dev/null", "/dev/random", "/dev/full"})
        replaced_while_in_use(folder, instead([=](const fs::path &place) { fs::create_symlink(device, place); }),
                              failed_open(ENXIO));
    replaced_while_in_use(folder, instead([](const fs::path &place) { fs::create_symlink("x.osd", place); }),
                          failed_open(ELOOP));
    replaced_while_in_use(folder, instead([](const fs::path &place) { fs::create_symlink("nowhere", place); }),
                          failed_open(ENOENT));
    replaced_while_in_use(folder, instead([&](const fs::path &place) {
                              folder.write("linked", file_with_Tc("355.0"));
                              fs::create_symlink("linked", place);
                          }),
                          "No errors", 355.0);
}

TEST_F(files, an_endless_file) {
    const fluid_folder folder;
    // The file consists of holes: it has much to read, but the library must not fill the memory with it.
    replaced_while_in_use(
        folder, [](const fs::path &place) { fs::resize_file(place, std::uintmax_t{1} << 40); }, failed_open(EFBIG));
}

#ifdef OSTREL_WITH_SQLITE

struct databases : files {
    static std::string read(const std::string &path) {
        ideal_specific_heat::errmsg.reset();
        read_init_fluiddatadb(path.data(), "x", path.size(), 1);
        return support::shared_text();
    }
    static constexpr const char *not_given = " Error in Ostrel: error opening fluid x";
};

TEST_F(databases, replaced_and_broken) {
    const support::temporary_folder folder;
    const std::string path = folder.path() + "/fluids.sqlite";
    const long descriptors = support::open_descriptors();
    support::make_database(path, "x", file_with_Tc("311.0"));
    EXPECT_EQ(read(path), "No errors");
    EXPECT_EQ(gas_properties::gas.Tc, 311.0);
    support::make_database(folder.path() + "/new", "x", file_with_Tc("333.0"));
    fs::rename(folder.path() + "/new", path);
    EXPECT_EQ(read(path), "No errors");
    EXPECT_EQ(gas_properties::gas.Tc, 333.0);
    for (const std::uintmax_t size : {5000U, 100U, 1U, 0U}) {
        fs::resize_file(path, size);
        EXPECT_EQ(read(path), not_given) << size;
    }
    fs::remove(path);
    EXPECT_EQ(read(path), not_given);
    fs::create_directory(path);
    EXPECT_EQ(read(path), not_given);
    fs::remove(path);
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(read(path), not_given);
    EXPECT_EQ(read("/dev/zero"), not_given);
    EXPECT_EQ(gas_properties::gas.Tc, 333.0) << "what cannot be read changes nothing";
    EXPECT_EQ(support::open_descriptors(), descriptors);
}

#endif

/// The answers, one in each line, that an unprivileged user gets from a folder in which nobody may write.
std::string seen_by_nobody(const fluid_folder &folder) {
    std::string text;
    const auto line = [&text](const std::string &answer) { text += answer + "\n"; };
    line(ask("x", "td", 500, 2.0, "t").text);
    line(ask("secret", "td", 500, 2.0, "t").text);
    std::int32_t count = -1;
    std::string names(std::size_t{500} * 256, ' ');
    ostrel_fluids(&count, names.data(), 256);
    line(std::to_string(count) + " fluids");
#ifdef OSTREL_WITH_SQLITE
    for (const char *name : {"/fluids.sqlite", "/secret.sqlite"}) {
        ideal_specific_heat::errmsg.reset();
        const std::string path = folder.path() + name;
        read_init_fluiddatadb(path.data(), "x", path.size(), 1);
        line(support::shared_text());
    }
#endif
    setenv("OSTREL_FLUIDS", (folder.path() + "/locked").c_str(), 1);
    line(ask("y", "td", 500, 2.0, "t").text);
    ostrel_fluids(&count, names.data(), 256);
    line(std::to_string(count) + " fluids");
    return text;
}

TEST_F(files, of_a_folder_that_cannot_be_written) {
    const fluid_folder folder;
    folder.add("x", vapor_file());
    folder.add("secret", vapor_file());
    fs::create_directory(folder.path() + "/locked");
#ifdef OSTREL_WITH_SQLITE
    support::make_database(folder.path() + "/fluids.sqlite", "x", vapor_file());
    support::make_database(folder.path() + "/secret.sqlite", "x", vapor_file());
#endif
    for (const auto &entry : fs::directory_iterator(folder.path())) {
        const bool secret = entry.path().filename().string().starts_with("secret");
        fs::permissions(entry.path(), secret || entry.is_directory() ? fs::perms::none : fs::perms(0444));
    }
    fs::permissions(folder.path(), fs::perms(0555));

    constexpr int no_such_user = 3;
    constexpr int out_of_reach = 4;
    support::child_process child([&] {
        if (geteuid() == 0) {
            // Permissions do not hold for root.
            const passwd *const nobody = getpwnam("nobody");
            if (nobody == nullptr || setgroups(0, nullptr) != 0 || setgid(nobody->pw_gid) != 0 ||
                setuid(nobody->pw_uid) != 0)
                _exit(no_such_user);
        }
        if (access((folder.path() + "/x.osd").c_str(), R_OK) != 0)
            _exit(out_of_reach);
        if (access(folder.path().c_str(), W_OK) == 0 || access((folder.path() + "/x.osd").c_str(), W_OK) == 0)
            _exit(1);
        std::fputs(seen_by_nobody(folder).c_str(), stdout);
    });
    const std::string text = child.read_text();
    const int status = child.status();
    fs::permissions(folder.path(), fs::perms(0700));
    fs::permissions(folder.path() + "/locked", fs::perms(0700));
    if (status == no_such_user)
        GTEST_SKIP() << "no unprivileged user to become";
    if (status == out_of_reach)
        GTEST_SKIP() << "the temporary folder is not for other users";
    EXPECT_EQ(status, support::child_process::came_back);
    const std::string no_access = failed_open(EACCES) + "\n";
    std::string wanted = "No errors\n" + no_access + "2 fluids\n";
#ifdef OSTREL_WITH_SQLITE
    wanted += "No errors\n Error in Ostrel: error opening fluid x\n";
#endif
    EXPECT_EQ(text, wanted + no_access + "0 fluids\n");
}

} // namespace
