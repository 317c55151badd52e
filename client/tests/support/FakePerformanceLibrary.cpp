// A library with the functions of the external performance library, loaded by a test as a module. Configuration,
// version, start and stop, in this order, answer the status that stands in FAKE_Status and count in FAKE_Calls.

extern "C" {

extern int FAKE_Status[4];
extern int FAKE_Calls[4];
int FAKE_Status[4];
int FAKE_Calls[4];

int MERIDX_Config_Event(const char* file)
{
    ++FAKE_Calls[0];
    return file[0] == 'e' ? FAKE_Status[0] : -1;    // "events..."
}

// No text for the status 99.
int MERIDX_Get_Error_Message(int status, char** text)
{
    static char s_text[] = "no access";
    if (status == 99) return 1;
    *text = s_text;
    return 0;
}

int MERIDX_Get_Version(unsigned int* a, unsigned int* b, unsigned int* c)
{
    *a = 1;
    *b = 2;
    *c = 3;
    ++FAKE_Calls[1];
    return FAKE_Status[1];
}

int MERIDX_Start_Collection()
{
    ++FAKE_Calls[2];
    return FAKE_Status[2];
}

int MERIDX_Stop_Collection()
{
    ++FAKE_Calls[3];
    return FAKE_Status[3];
}
}
