// The table of every type record: dynamic_cast, in the runtime, compares the records' names. Compiled without type
// records of its own.
class type_info
{
public:
    virtual ~type_info();

protected:
    type_info();

private:
    [[maybe_unused]] void * m_data;
    [[maybe_unused]] char m_name[1];
};

type_info::~type_info() = default;
// Only a constructor makes the compiler write the table down.
type_info::type_info() = default;
