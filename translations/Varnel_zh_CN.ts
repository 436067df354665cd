<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN">
<context>
    <name>QObject</name>
    <message>
        <source>Searching examples</source>
        <translation>正在搜索示例</translation>
    </message>
    <message>
        <source>Search error: request return null object</source>
        <translation>搜索错误：请求返回空对象</translation>
    </message>
    <message>
        <source>Search error: request return wrong data - no id field</source>
        <translation>搜索错误：请求返回错误数据 - 没有 id 字段</translation>
    </message>
    <message>
        <source>API client is ready</source>
        <translation>API 客户端已就绪</translation>
    </message>
    <message>
        <source>Repository error: group id not found - unable to fetch examples</source>
        <translation>代码仓库错误：未找到组 ID - 无法获取示例</translation>
    </message>
    <message>
        <source>Fetch examples</source>
        <translation>正在获取示例</translation>
    </message>
    <message>
        <source>Fetch error: request return null object</source>
        <translation>获取错误：请求返回空对象</translation>
    </message>
    <message>
        <source>Fetch error: request return wrong data - no projects field</source>
        <translation>获取错误：请求返回错误数据 - 没有 projects 字段</translation>
    </message>
    <message>
        <source>Downloading example: %1</source>
        <translation>正在下载示例：%1</translation>
    </message>
    <message>
        <source>Unable to download image: %1</source>
        <translation>无法下载图片：%1</translation>
    </message>
    <message>
        <source>Network error: %1</source>
        <translation>网络错误：%1</translation>
    </message>
    <message>
        <source>example</source>
        <translation>示例</translation>
    </message>
    <message>
        <source>Description</source>
        <translation>说明</translation>
    </message>
    <message>
        <source>This file is used by SDK to show image for example inside Welcome screen.
It is not the part of the example.</source>
        <translation>SDK 使用此文件在欢迎界面中显示示例的图片。
它不是示例的一部分。</translation>
    </message>
    <message>
        <source>Unable to cast repository from: %1</source>
        <translation>该对象不是代码仓库：%1</translation>
    </message>
    <message>
        <source>Skip registering example %1 - unable to find repository for name: %2</source>
        <translation>未注册示例 %1 - 找不到具有此名称的代码仓库：%2</translation>
    </message>
    <message>
        <source>There was an error while creating example mainfest</source>
        <translation>创建示例清单时发生错误</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::DownloadService</name>
    <message>
        <source>API client is not ready - restarting</source>
        <translation>API 客户端未就绪 - 正在重新启动</translation>
    </message>
    <message>
        <source>Skip downloading examples - unable to find repository for name: %1</source>
        <translation>未下载示例 - 找不到具有此名称的代码仓库：%1</translation>
    </message>
    <message>
        <source>Skip downloading examples - unable to find repository for url: %1</source>
        <translation>未下载示例 - 找不到具有此 URL 的代码仓库：%1</translation>
    </message>
    <message>
        <source>The data is not downloaded for example: %1</source>
        <translation>未下载以下示例的数据：%1</translation>
    </message>
    <message>
        <source>Skip saving example %1 - unable to find repository name for url: %2</source>
        <translation>未保存示例 %1 - 找不到具有此 URL 的代码仓库的名称：%2</translation>
    </message>
    <message>
        <source>Unpacking example: %1</source>
        <translation>正在解压示例：%1</translation>
    </message>
    <message>
        <source>Downloaded file is not an archive</source>
        <translation>下载的文件不是归档文件</translation>
    </message>
    <message>
        <source>There was an error while unarchiving</source>
        <translation>解压归档文件时发生错误</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::ExamplesDialog</name>
    <message>
        <source>Select Examples to Install</source>
        <translation>选择要安装的示例</translation>
    </message>
    <message>
        <source>Filter examples</source>
        <translation>过滤示例</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Name:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Description:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Updated:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Location:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%4&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;名称：&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;说明：&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;更新时间：&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;位置：&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%4&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::OptionsWidget</name>
    <message>
        <source>Add or remove examples from selected repository</source>
        <translation>从选中的代码仓库添加或删除示例</translation>
    </message>
    <message>
        <source>Installed Examples</source>
        <translation>已安装的示例</translation>
    </message>
    <message>
        <source>Repository:</source>
        <translation>代码仓库：</translation>
    </message>
    <message>
        <source>Selected repository name</source>
        <translation>选中的代码仓库名称</translation>
    </message>
    <message>
        <source>List of installed examples</source>
        <translation>已安装示例的列表</translation>
    </message>
    <message>
        <source>Filter examples</source>
        <translation>过滤示例</translation>
    </message>
    <message>
        <source>Add examples from online repository</source>
        <translation>从在线代码仓库添加示例</translation>
    </message>
    <message>
        <source>Add...</source>
        <translation>添加...</translation>
    </message>
    <message>
        <source>Remove selected installed examples</source>
        <translation>删除选中的已安装示例</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>删除</translation>
    </message>
    <message>
        <source>Online Updates</source>
        <translation>在线更新</translation>
    </message>
    <message>
        <source>Check every</source>
        <translation>检查间隔</translation>
    </message>
    <message>
        <source>Timeout for checking example updates and downloading new examples.
Set 0 to disable automatic updates.</source>
        <translation>检查示例更新并下载新示例的时间间隔。
设置为 0 将禁用自动更新。</translation>
    </message>
    <message>
        <source>day(s)</source>
        <translation>天</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Location:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Updated:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Status:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;位置：&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;更新时间：&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;状态：&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Folder:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Link:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;文件夹：&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;链接：&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
    <message>
        <source>Updated</source>
        <translation>已更新</translation>
    </message>
    <message>
        <source>Update available</source>
        <translation>有可用更新</translation>
    </message>
    <message>
        <source>Examples Not Found</source>
        <translation>未找到示例</translation>
    </message>
    <message>
        <source>Check your online connection and try again later!</source>
        <translation>请检查您的网络连接，稍后重试！</translation>
    </message>
    <message>
        <source>Examples Not Selected</source>
        <translation>未选择示例</translation>
    </message>
    <message>
        <source>Select examples to remove, press Remove button, then press Apply button to apply changes.</source>
        <translation>选择要删除的示例，点击“删除”按钮，然后点击“应用”按钮以应用更改。</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::Plugin</name>
    <message>
        <source>Open location...</source>
        <translation>打开位置...</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::VarnelPlugin</name>
    <message>
        <source>Examples</source>
        <translation>示例</translation>
    </message>
</context>
</TS>
