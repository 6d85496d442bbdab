// Finding files along folders and beside a base file, and image reading
// through ImageFileHandler's path handler.
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGImageFileHandler.h>
#include <OpenSG/OSGPathHandler.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

OSG_USING_NAMESPACE

namespace
{

/// Two fresh folders, a/ and b/, below one temporary folder.
struct TwoFolders
{
    std::string root, a, b;

    TwoFolders(void)
    {
        char tmpl[] = "/tmp/osgpathXXXXXX";
        root        = mkdtemp(tmpl) != NULL ? tmpl : "/tmp";
        a           = root + "/a";
        b           = root + "/b";
        mkdir(a.c_str(), 0700);
        mkdir(b.c_str(), 0700);
    }

    ~TwoFolders(void)
    {
        std::system(("rm -rf '" + root + "'").c_str());
    }

    void touch(const std::string &path)
    {
        std::FILE *f = std::fopen(path.c_str(), "w");
        if(f != NULL)
            std::fclose(f);
    }
};

} // namespace

TEST(PathHandler, SearchesBaseFileFolderThenThePathsInOrder)
{
    TwoFolders dirs;
    dirs.touch(dirs.a + "/x.dat");
    dirs.touch(dirs.b + "/x.dat");
    dirs.touch(dirs.b + "/y.dat");

    PathHandler ph((dirs.b + ":" + dirs.a).c_str());
    EXPECT_EQ(ph.findFile("x.dat"), dirs.b + "/x.dat");
    EXPECT_EQ(ph.findFile("y.dat"), dirs.b + "/y.dat");
    EXPECT_EQ(ph.findFile("z.dat"), "");
    EXPECT_EQ(ph.findFile(NULL), "");

    ph.setBaseFile((dirs.a + "/scene.osb").c_str());
    EXPECT_EQ(ph.findFile("x.dat"), dirs.a + "/x.dat");
    ph.clearBaseFile();

    ph.subUnixPath(dirs.b.c_str());
    EXPECT_EQ(ph.findFile("x.dat"), dirs.a + "/x.dat");
    EXPECT_EQ(ph.findFile("y.dat"), "");

    // absolute names only need to exist
    EXPECT_EQ(ph.findFile((dirs.b + "/y.dat").c_str()), dirs.b + "/y.dat");
    EXPECT_EQ(ph.findFile((dirs.b + "/none").c_str()), "");

    ph.clearPathList();
    ph.push_backWin32Path((dirs.b + ";" + dirs.a).c_str());
    EXPECT_EQ(ph.findFile("x.dat"), dirs.b + "/x.dat");

    EXPECT_EQ(PathHandler::extractPath("/data/volumes/head.dat"), "/data/volumes/");
    EXPECT_EQ(PathHandler::extractPath("head.dat"), "");
}

TEST(PathHandler, ImageFileHandlerReadsRelativeNamesThroughIt)
{
    TwoFolders dirs;
    ImagePtr   image = Image::create();
    addRefCP(image);
    const UInt8 pixels[4] = {10, 20, 30, 40};
    image->set(Image::OSG_L_PF, 2, 2, 1, 1, 1, 0.0, pixels);
    ASSERT_TRUE(ImageFileHandler::the().write(image, (dirs.b + "/grey.png").c_str()));

    ImageFileHandler &handler = ImageFileHandler::the();
    PathHandler       ph((dirs.a + ":" + dirs.b).c_str());
    EXPECT_EQ(handler.getPathHandler(), nullptr);
    handler.setPathHandler(&ph);

    ImagePtr back = Image::create();
    addRefCP(back);
    bool ok = handler.read(back, "grey.png");
    handler.setPathHandler(NULL);
    ASSERT_TRUE(ok);
    EXPECT_EQ(back->getWidth(), 2);
    EXPECT_EQ(back->getData()[3], 40);
    const std::string *full = back->findAttachmentField("fullFilePath");
    ASSERT_NE(full, nullptr);
    EXPECT_EQ(*full, dirs.b + "/grey.png");
    EXPECT_EQ(*back->findAttachmentField("fileName"), "grey.png");

    // without the handler the relative name is not found
    EXPECT_FALSE(handler.read(back, "grey.png"));
    subRefCP(back);
    subRefCP(image);
}
