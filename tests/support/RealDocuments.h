#ifndef QRM_TESTS_REALDOCUMENTS_H
#define QRM_TESTS_REALDOCUMENTS_H

#include <algorithm>
#include <filesystem>
#include <ostream>
#include <set>
#include <string>
#include <vector>

/// Documents as Debian ships them.
namespace real_documents {

struct Package
{
    friend void PrintTo(const Package& package, std::ostream* stream) { *stream << package.name; }

    const char* name;
    const char* folder;
    std::size_t atLeast; // documents to be found there
    std::size_t atMost;  // documents to be taken from there
    std::set<std::string> illFormed;
};

inline const std::vector<Package>& packages()
{
    static const std::vector<Package> all = {
        {"iso-codes",
         "/usr/share/xml/iso-codes",
         7,
         100,
         {"iso_3166-2.xml", "iso_3166_2.xml", "iso_3166-3.xml"}},
        {"shared-mime-info", "/usr/share/mime/packages", 1, 100, {}},
        {"xkb-data", "/usr/share/X11/xkb/rules", 2, 100, {}},
        {"unicode-cldr-core", "/usr/share/unicode/cldr/common", 300, 320, {}},
    };
    return all;
}

/// Those of a package; where it has more than it is to give, they are taken from all over it.
inline std::vector<std::filesystem::path> of(const Package& package)
{
    namespace fs = std::filesystem;
    std::vector<fs::path> all;
    if (fs::exists(package.folder)) {
        for (const auto& entry : fs::recursive_directory_iterator(package.folder)) {
            if (entry.is_regular_file() && entry.path().extension() == ".xml") {
                all.push_back(entry.path());
            }
        }
    }
    std::sort(all.begin(), all.end());
    if (all.size() <= package.atMost) {
        return all;
    }
    std::vector<fs::path> spread;
    for (std::size_t i = 0; i < package.atMost; ++i) {
        spread.push_back(all[i * all.size() / package.atMost]);
    }
    return spread;
}

} // namespace real_documents

#endif
