#pragma once

#include <optional>

namespace corvane {

class LocalDB;

/// Where the screens' data comes from. A seam without operations: nothing is routed through it yet.
class DataSource {
public:
    virtual ~DataSource() = default;
};

struct LocalDataSource final : DataSource {
    explicit LocalDataSource(LocalDB& store)
        : db(store)
    {
    }
    LocalDB& db;
};

/// The data source of this machine, once the start sequence has set it.
struct AppData {
    std::optional<LocalDataSource> local;
};

}
