// What the host asks of every plugin. The order of the virtual operations is fixed.
#ifndef PLUGININTERFACE_H
#define PLUGININTERFACE_H

#include <QList>
#include <QString>

class TApplicationData;

class PluginInterface
{
public:
    virtual ~PluginInterface();

    // Returns a working copy, which the caller deletes. It takes over the file that the plugin has open.
    virtual PluginInterface *clone() = 0;

    virtual QList<QString> getExtension() const = 0;
    virtual int pluginKind() = 0;
    virtual TApplicationData *getApplicationData() const = 0;
    virtual void setApplicationData(TApplicationData *data) = 0;

protected:
    // Takes over the state that `source` keeps in the host's base classes.
    virtual void copyInterface(PluginInterface *source) = 0;
};

#endif // PLUGININTERFACE_H
